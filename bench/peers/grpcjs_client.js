// Times the request from Node, with @grpc/grpc-js and @grpc/proto-loader from
// NODE_PATH.
//
// usage: grpcjs_client.js PROTO-FOLDER CALLS
//
// Prints the median in microseconds.
const grpc = require('@grpc/grpc-js');
const loader = require('@grpc/proto-loader');

const [folder, calls] = process.argv.slice(2);
const definition = loader.loadSync('ostrevan/grpcdapi.proto', { includeDirs: [folder] });
const { DAPI } = grpc.loadPackageDefinition(definition).ostrevan.grpcdapi;
const client = new DAPI(process.env.grpc_dapi_url, grpc.credentials.createInsecure());

const ask = () =>
  new Promise((resolve, reject) =>
    client.GetName({}, (error, reply) => (error ? reject(error) : resolve(reply.name))));

async function main() {
  const times = [];
  for (let i = 0; i < Number(calls) + 10; ++i) {
    const begin = process.hrtime.bigint();
    if (!(await ask())) throw new Error('no name');
    if (i >= 10) times.push(Number(process.hrtime.bigint() - begin) / 1000);
  }
  times.sort((a, b) => a - b);
  console.log(times[Math.floor(times.length / 2)]);
  client.close();
}

main().catch((error) => {
  console.error(String(error));
  process.exit(1);
});
