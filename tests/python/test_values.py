"""Arguments, records and the exception: what they accept, and that they are copied whole."""

import copy
import pickle
import re

import networkgrpc
import pytest
from networkgrpc import dante, network
from test_networkgrpc import functions_of


def test_records_are_made_compared_and_shown_like_dataclasses():
    info = network.InterfaceInfo(mode=1, ip="10.0.0.1")
    assert (info.mode, info.ip, info.netmask, info.active) == (1, "10.0.0.1", "", False)
    assert info == network.InterfaceInfo(ip="10.0.0.1", mode=1)
    assert info != network.InterfaceInfo()
    assert info != "10.0.0.1"
    info.name = "lan0"
    assert repr(info) == (
        "InterfaceInfo(mode=1, name='lan0', ip='10.0.0.1', netmask='', gateway='', mac='',"
        " dns='', active=False, id=0)"
    )
    assert eval(repr(info), vars(network)) == info  # pylint: disable=eval-used
    with pytest.raises(TypeError):
        hash(info)
    with pytest.raises(TypeError):
        dante.ChannelLink(value2=-1)
    with pytest.raises(TypeError):
        dante.Channel(1, "positional")
    assert dante.ChannelLink(session_id=2**64 - 1).session_id == 2**64 - 1


# Every function that takes a string, and every member of a record that is one.
STRING_ARGUMENTS = [
    "network.get_mac_address({})",
    "network.set_hostname({})",
    "network.set_ntp_server({}, True)",
    "dante.set_name({})",
]
STRING_MEMBERS = [
    (f"{module.__name__.split('.')[1]}.{name}", member)
    for module, name in [
        (network, "InterfaceInfo"), (network, "SwitchMode"), (dante, "Channel"), (dante, "ChannelLink"),
    ]
    for member in dir(getattr(module, name))
    if not member.startswith("_") and isinstance(getattr(getattr(module, name)(), member), str)
]


def test_lists_of_strings_above_are_complete():
    # The functions say in their first line what they take.
    taking = [
        name
        for module in (network, dante)
        for name in functions_of(module)
        if ": str" in getattr(module, name).__doc__.splitlines()[0]
    ]
    assert sorted(taking) == sorted(re.findall(r"[.](\w+)", " ".join(STRING_ARGUMENTS)))
    assert len(STRING_MEMBERS) == 6 + 1 + 1 + 4


@pytest.mark.parametrize("value", ["b'x'", "b'\\xff'", "bytearray(b'x')", "None", "'\\udc80'"])
def test_other_than_a_string_raises_before_anything_is_sent(device, ask, value):
    calls = [call.format(value) for call in STRING_ARGUMENTS]
    calls += [f"{record}({member}={value})" for record, member in STRING_MEMBERS]
    calls += [f"setattr({record}(), {member!r}, {value})" for record, member in STRING_MEMBERS]
    told = ask(
        "for call in " + repr(calls) + ":\n"
        "    try:\n"
        "        eval(call)\n"
        "    except TypeError:\n"
        "        print(call)\n"
    )
    assert told.splitlines() == calls
    assert device.calls() == []


@pytest.mark.parametrize(
    "call",
    [
        "dante.set_aes67(None)",
        "dante.set_aes67(0.5)",
        "dante.set_aes67(1)",
        "dante.set_latency(None)",
        "dante.set_latency(1.5)",
        "dante.set_latency(decimal.Decimal('1.5'))",
        "dante.set_latency(2**31)",
        "network.set_ntp_server('time', None)",
        "network.set_control_ip(None, True)",
        "dante.ChannelLink(is_raw=None)",
        "dante.ChannelLink(value2=fractions.Fraction(3, 2))",
        "setattr(dante.ChannelLink(), 'is_raw', 0.5)",
        "setattr(dante.ChannelLink(), 'session_id', -1)",
    ],
)
def test_number_or_flag_that_would_be_changed_raises_before_anything_is_sent(device, ask, call):
    told = ask(f"import decimal, fractions\ntry:\n    {call}\nexcept TypeError:\n    print('raised')\n")
    assert told == "raised\n"
    assert device.calls() == []


def test_failure_carries_the_record_as_it_was_sent(device, ask):
    device.fault("SetTxChannelName:reject")
    told = ask(
        "channel = dante.Channel(id=1, name='sent')\n"
        "try:\n"
        "    dante.set_tx_channel_name(channel)\n"
        "except CallFailed as failed:\n"
        "    channel.name = 'changed'\n"
        "    print(failed)\n"
    )
    assert told == "networkgrpc.dante.set_tx_channel_name(channel=Channel(id=1, name='sent')) failed\n"


RECORDS = [
    network.InterfaceInfo(mode=1, name="Bühne", ip="a\0b", gateway="g", dns="d", mac="m", netmask="n", active=True, id=-7),
    network.SwitchMode(id=-1, name="both"),
    dante.Channel(id=2**31 - 1, name="Main"),
    dante.ChannelLink(
        rx_channel_id=1, channel_name="c", device_name="d", is_raw=True, ip="239.0.0.1", value2=2, value3=3, value4=4,
        value5=5, value6=2**32 - 1, encoding=1, sip="s", has_session_id=True, session_id=2**64 - 1,
    ),
    dante.ChannelsNum(tx=1, rx=2),
]


class Labelled(dante.Channel):
    """A record that a program extends."""

    def __init__(self, label):
        super().__init__(id=3, name="third")
        self.label = label


COPIES = {
    "copy": copy.copy,
    "deepcopy": copy.deepcopy,
    **{
        f"pickle {protocol}": lambda record, protocol=protocol: pickle.loads(pickle.dumps(record, protocol))
        for protocol in range(pickle.HIGHEST_PROTOCOL + 1)
    },
}


@pytest.mark.parametrize("duplicate", COPIES.values(), ids=COPIES.keys())
def test_records_are_copied_and_pickled_with_every_member(duplicate):
    for record in RECORDS:
        made = duplicate(record)
        assert made == record
        assert type(made) is type(record)
        for member in [name for name in dir(record) if not name.startswith("_")]:
            changed = duplicate(record)
            value = getattr(record, member)
            other = value + "x" if isinstance(value, str) else not value if isinstance(value, bool) else value ^ 1
            setattr(changed, member, other)
            assert getattr(made, member) == value
            assert changed != made, member
    labelled = Labelled(["a", "b"])
    made = duplicate(labelled)
    labelled.label = []
    assert (type(made), made.label, made.name) == (Labelled, ["a", "b"], "third")


def test_failure_is_copied_and_pickled():
    failed = networkgrpc.CallFailed("networkgrpc.dante.set_tapping", {"link": RECORDS[3]})
    failed.__notes__ = ["a note"]
    for duplicate in COPIES.values():
        made = duplicate(failed)
        assert type(made) is networkgrpc.CallFailed
        assert (made.function, made.arguments, made.__notes__) == (failed.function, failed.arguments, ["a note"])
        assert str(made) == str(failed)


class OfOwn(networkgrpc.CallFailed):
    """An exception that a program derives without calling the constructor of the base."""

    def __init__(self, cause):
        self.cause = cause


class Unprintable:
    def __repr__(self):
        raise ValueError("not to be shown")

    __str__ = __repr__


@pytest.mark.parametrize(
    "failed, text",
    [
        (networkgrpc.CallFailed("f", {"name": b"\xff", "n": 1}), "f(name=b'\\xff', n=1) failed"),
        (networkgrpc.CallFailed("f", {"name": "\udc80"}), "f(name='\\udc80') failed"),
        (networkgrpc.CallFailed("f", {}), "f() failed"),
        (networkgrpc.CallFailed("f", None), "f(...) failed"),
        (networkgrpc.CallFailed("f", ["a"]), "f(...) failed"),
        (networkgrpc.CallFailed("f", {"a": Unprintable()}), "f(...) failed"),
        (networkgrpc.CallFailed(None, None), "None(...) failed"),
        (networkgrpc.CallFailed(b"f", {}), "b'f'() failed"),
        (networkgrpc.CallFailed(Unprintable(), {}), "networkgrpc.CallFailed"),
        (OfOwn("x"), "networkgrpc.CallFailed"),
        (networkgrpc.CallFailed.__new__(networkgrpc.CallFailed), "networkgrpc.CallFailed"),
    ],
)
def test_failure_is_printable_whatever_it_holds(failed, text):
    assert str(failed) == text
    if failed.args and not any("Unprintable" in str(type(a)) for a in failed.args):
        assert str(pickle.loads(pickle.dumps(failed))) == text
