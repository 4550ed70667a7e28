"""Calls in threads, in asyncio, in other processes, and while the interpreter ends."""

import sys

import pytest


def test_other_threads_run_during_a_call(ask):
    assert ask("""
import threading
ctl("fault", "DAPI.GetLatency:freeze")
latency = []
caller = threading.Thread(target=lambda: latency.append(dante.get_latency()))
caller.start()
# Only when the call has arrived and is held is the fault taken back.
wait_for_call("GetLatency")
ctl("clear", "all")
caller.join()
print(latency)
""") == "[1000]\n"


@pytest.mark.parametrize("function", ["set_dante_ip(info, 0", "set_control_ip(info", "set_generic_ip(4, info"])
def test_record_changed_during_the_call_is_sent_as_it_was(device, ask, function):
    ask(f"""
import threading
# The first call of a process asks for the interfaces before it fills its request.
ctl("fault", "GetAvailableInterfaces:freeze")
info = network.InterfaceInfo(mode=1, ip="10.0.0.9", netmask="255.0.0.0")
caller = threading.Thread(target=lambda: network.{function}, False))
caller.start()
wait_for_call("GetAvailableInterfaces")
info.ip = "10.6.6.6"
ctl("clear", "all")
caller.join()
""")
    sent = [call.request for call in device.calls()]
    assert [request["ip"] for request in sent if "ip" in request] == ["10.0.0.9"]


def test_awaited_call_returns_or_raises(ask):
    assert ask("""
import asyncio
async def main():
    run = asyncio.get_running_loop().run_in_executor
    print(await run(None, dante.get_name), await asyncio.to_thread(dante.get_latency))
    ctl("fault", "DAPI.SetName:reject")
    try:
        await run(None, dante.set_name, "x")
    except CallFailed as failed:
        print(failed)
asyncio.run(main())
""") == "Amplifier-520001 1000\nnetworkgrpc.dante.set_name(name='x') failed\n"


def test_cancelled_call_continues_and_one_that_waits_for_a_thread_is_not_made(device, ask):
    assert ask("""
import asyncio, concurrent.futures, threading
async def main():
    asyncio.get_running_loop().set_default_executor(concurrent.futures.ThreadPoolExecutor(1))
    ctl("fault", "DAPI.SetLatency:freeze")
    tasks = [asyncio.create_task(asyncio.to_thread(dante.set_latency, 2000)),
             asyncio.create_task(asyncio.to_thread(dante.set_name, "never"))]
    while "SetLatency" not in ctl("calls"):
        await asyncio.sleep(0)
    for task in tasks:
        task.cancel()
    print([type(result).__name__ for result in await asyncio.gather(*tasks, return_exceptions=True)])
    threading.Thread(target=ctl, args=("clear", "all")).start()
# Returns only when the thread has ended, and with it the call.
asyncio.run(main())
print(dante.get_latency())
""") == "['CancelledError', 'CancelledError']\n2000\n"
    assert "DAPI.SetName" not in [call.method for call in device.calls()]


def test_other_processes_that_do_not_share_a_connection_can_call(device, run, tmp_path):
    # A new process imports the program again, so it is a file.
    program = tmp_path / "program.py"
    program.write_text("""
import multiprocessing, os
from networkgrpc import CallFailed, dante
def ask(number):
    if number < 0:
        dante.set_tx_channel_name(dante.Channel(id=number))
    return dante.get_tx_channels()[number]
if __name__ == "__main__":
    child = os.fork()
    os.write(1, dante.get_name().encode() + b"\\n")  # two processes: each line in one piece
    if child == 0:
        os._exit(0)
    os.waitpid(child, 0)
    for method in ("spawn", "forkserver"):
        with multiprocessing.get_context(method).Pool(1) as pool:
            print(pool.apply(ask, [1]), flush=True)
            try:
                pool.apply(ask, [-1])
            except CallFailed as failed:
                print(failed, flush=True)
""", encoding="utf-8")
    ended = run(sys.executable, str(program), **device.environment)
    assert (ended.returncode, ended.stdout.splitlines()) == (
        0,
        2 * ["Amplifier-520001"]
        + 2 * [
            "Channel(id=2, name='02')",
            "networkgrpc.dante.set_tx_channel_name(channel=Channel(id=-1, name='')) failed",
        ],
    ), ended.stderr


def test_calls_are_made_until_the_interpreter_has_ended(ask):
    assert ask("""
import atexit, sys, threading
class Last:
    def __del__(self, get_latency=dante.get_latency, print=print, out=sys.stdout):
        print("deleted", get_latency(), file=out, flush=True)
last = Last()
atexit.register(lambda: print("at exit", dante.get_latency(), flush=True))
ctl("fault", "DAPI.GetLatency:freeze,times=1")
# The interpreter waits for this thread.
threading.Thread(target=lambda: print("thread", dante.get_latency(), flush=True)).start()
wait_for_call("GetLatency")
threading.Thread(target=lambda: (threading.main_thread().join(), ctl("clear", "all"))).start()
""") == "thread 1000\nat exit 1000\ndeleted 1000\n"


def test_thread_whose_call_ends_while_the_interpreter_does_stops_quietly(ask):
    assert ask("""
import os, sys, threading
class Last:
    # Modules are gone when this is called; their functions are not.
    def __del__(self, spawn=os.posix_spawn, wait=os.waitpid, environment=dict(os.environ), write=os.write):
        # The first command ends the call; each releases the interpreter's lock while it waits.
        for _ in range(50):
            wait(spawn(CTL[0], CTL + ["clear", "all"], environment), 0)
        write(1, b"last")
# What `sys` holds is deleted last: by then, Python stops each thread that wants its lock.
sys.last = Last()
ctl("fault", "DAPI.GetLatency:freeze")
threading.Thread(target=dante.get_latency, daemon=True).start()
wait_for_call("GetLatency")
""") == "last"
