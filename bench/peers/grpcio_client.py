#!/usr/bin/env python3
"""Times the request from Python, with Debian's grpcio.

usage: grpcio_client.py CALLS

Prints the median in microseconds. The message's class is made here, so that no
generated file is needed: it is the same class that protoc would write.
"""
import os
import statistics
import sys
import time

import grpc
from google.protobuf import descriptor_pb2, descriptor_pool, message_factory

STRING, OPTIONAL = 9, 1


def name_class():
    """ostrevan.grpcdapi.Name: one string."""
    schema = descriptor_pb2.FileDescriptorProto(name="name.proto", syntax="proto3")
    schema.message_type.add(name="Name").field.add(name="name", number=1, type=STRING, label=OPTIONAL)
    pool = descriptor_pool.DescriptorPool()
    pool.Add(schema)
    return message_factory.MessageFactory(pool).GetPrototype(pool.FindMessageTypeByName("Name"))


def main(calls):
    name = name_class()
    with grpc.insecure_channel(os.environ["grpc_dapi_url"]) as channel:
        get_name = channel.unary_unary("/ostrevan.grpcdapi.DAPI/GetName",
                                       request_serializer=lambda _: b"",
                                       response_deserializer=name.FromString)
        times = []
        for _ in range(calls + 10):
            begin = time.perf_counter()
            assert get_name(None).name
            times.append(time.perf_counter() - begin)
    print(statistics.median(times[10:]) * 1e6)


main(int(sys.argv[1]))
