// Makes the calls of a recording, and prints the replies as JSON, with @grpc/grpc-js and
// @grpc/proto-loader from NODE_PATH.
//
// usage: same_calls.js PROTO-FOLDER RECORDING
const fs = require('fs');
const grpc = require('@grpc/grpc-js');
const loader = require('@grpc/proto-loader');

const [folder, recording] = process.argv.slice(2);
const endpoints = {
  NetworkManager: ['ostrevan.networkmanager', 'network_manager_url'],
  DAPI: ['ostrevan.grpcdapi', 'grpc_dapi_url'],
};

function connect(service) {
  const [name, variable] = endpoints[service];
  const definition = loader.loadSync(`${name.replace('.', '/')}.proto`, { includeDirs: [folder] });
  const client = new grpc.Client(process.env[variable], grpc.credentials.createInsecure());
  return { client, methods: definition[`${name}.${service}`] };
}

const ask = ({ client, methods }, name, bytes) =>
  new Promise((resolve, reject) =>
    client.makeUnaryRequest(methods[name].path, (request) => request,
      methods[name].responseDeserialize, Buffer.from(bytes, 'base64'),
      (error, reply) => (error ? reject(error) : resolve(reply))));

async function main() {
  const services = {};
  for (const line of fs.readFileSync(recording, 'utf8').trim().split('\n').slice(1)) {
    const call = JSON.parse(line);
    const [service, method] = call.method.split('.');
    services[service] ??= connect(service);
    console.log(JSON.stringify(await ask(services[service], method, call.request_bytes)));
  }
  Object.values(services).forEach(({ client }) => client.close());
}

main().catch((error) => {
  console.error(String(error));
  process.exit(1);
});
