// A daemon on grpc-js: the methods of both schemas, answered as the daemons answer at
// network_manager_url and grpc_dapi_url, which keep the model. The wire is grpc-js's.
//
// usage: grpc_js_daemon [--decode]
//
//   --decode  messages are decoded and encoded again by protobufjs, not passed on as bytes
'use strict';

const path = require('path');
const grpc = require('@grpc/grpc-js');
const protoLoader = require('@grpc/proto-loader');

const decode = process.argv.includes('--decode');
const schemas = path.join(__dirname, '../../../proto');
const unlimited = {'grpc.max_receive_message_length': -1, 'grpc.max_send_message_length': -1};

const asBytes = {
  requestDeserialize: (bytes) => bytes,
  requestSerialize: (bytes) => bytes,
  responseDeserialize: (bytes) => bytes,
  responseSerialize: (bytes) => bytes,
};

function methodsOf(schema, service) {
  const loaded = protoLoader.loadSync(schema, {includeDirs: [schemas], longs: String});
  return Object.entries(loaded[service]).map(
      ([name, method]) => [name, decode ? method : {...method, ...asBytes}]);
}

// Passes a call on, with its deadline and cancellation, and its answer or status back.
function forwarder(upstream, method) {
  return (call, answer) => {
    const passedOn = upstream.makeUnaryRequest(
        method.path, method.requestSerialize, method.responseDeserialize, call.request,
        new grpc.Metadata(), {deadline: call.getDeadline()}, answer);
    call.on('cancelled', () => passedOn.cancel());
  };
}

function listen(server, address) {
  return new Promise((resolve, reject) => server.bindAsync(
      address, grpc.ServerCredentials.createInsecure(),
      (error, port) => error ? reject(error) : resolve(port)));
}

async function serve(schema, service, upstreamUrl) {
  const upstream = new grpc.Client(upstreamUrl, grpc.credentials.createInsecure(),
                                   {...unlimited, 'grpc.enable_http_proxy': 0});
  const server = new grpc.Server(unlimited);
  const methods = methodsOf(schema, service);
  server.addService(
      Object.fromEntries(methods),
      Object.fromEntries(methods.map(([name, method]) => [name, forwarder(upstream, method)])));
  const port = await listen(server, '127.0.0.1:0');
  await listen(server, `[::1]:${port}`).catch(() => {});  // not every machine has IPv6
  return `127.0.0.1:${port}`;
}

async function main() {
  const manager = await serve('ostrevan/networkmanager.proto',
                              'ostrevan.networkmanager.NetworkManager',
                              process.env.network_manager_url);
  const dapi = await serve('ostrevan/grpcdapi.proto', 'ostrevan.grpcdapi.DAPI',
                           process.env.grpc_dapi_url);
  console.log(`ready network_manager_url=${manager} grpc_dapi_url=${dapi}`);
}

main();
