#!/usr/bin/env python3
"""Makes the calls of a recording, and prints the replies as JSON, with Debian's grpcio.

usage: same_calls.py PROTO-FOLDER RECORDING
"""
import base64
import json
import os
import pathlib
import subprocess
import sys

import grpc
from google.protobuf import descriptor_pb2, descriptor_pool, json_format, message_factory


def load(folder):
    """The classes of all replies: service.method: class."""
    files = [f"ostrevan/{name}.proto" for name in ("common", "grpcdapi", "networkmanager")]
    command = ["protoc", f"--proto_path={folder}", "--include_imports", "--descriptor_set_out=/dev/stdout"]
    schemas = descriptor_pb2.FileDescriptorSet.FromString(subprocess.check_output([*command, *files]))
    pool = descriptor_pool.DescriptorPool()
    for schema in schemas.file:
        pool.Add(schema)
    factory = message_factory.MessageFactory(pool)
    return {
        f"{service.name}.{method.name}": (
            f"/{schema.package}.{service.name}/{method.name}",
            factory.GetPrototype(pool.FindMessageTypeByName(method.output_type.lstrip("."))),
        )
        for schema in schemas.file
        for service in schema.service
        for method in service.method
    }


def main(folder, recording):
    methods = load(folder)
    channels = {
        service: grpc.insecure_channel(os.environ[variable])
        for service, variable in (("DAPI", "grpc_dapi_url"), ("NetworkManager", "network_manager_url"))
    }
    for line in pathlib.Path(recording).read_text().splitlines()[1:]:
        call = json.loads(line)
        path, reply = methods[call["method"]]
        channel = channels[call["method"].split(".")[0]]
        ask = channel.unary_unary(path, response_deserializer=reply.FromString)
        print(json_format.MessageToJson(ask(base64.b64decode(call["request_bytes"]))))


main(*sys.argv[1:])
