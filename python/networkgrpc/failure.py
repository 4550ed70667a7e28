"""The exception that a failed function raises."""

from typing import Any, Dict


class CallFailed(Exception):
    """The C++ function returned false.

    The exception does not distinguish an unreachable daemon, an RPC error and a
    rejected request. The library prints a line for most failures; the C++ headers
    list the others.

    Attributes:
        function: full name, "networkgrpc.network.set_hostname" for example
        arguments: the arguments of the call by name
    """

    def __init__(self, function: str, arguments: Dict[str, Any]) -> None:
        super().__init__(function, arguments)
        self.function = function
        self.arguments = arguments

    # A program prints the exception when something has gone wrong already. So this
    # raises nothing, whatever the attributes have become.
    def __str__(self) -> str:
        try:
            arguments = ", ".join(f"{name}={value!r}" for name, value in self.arguments.items())
        except Exception:  # pylint: disable=broad-except
            arguments = "..."
        try:
            return f"{self.function}({arguments}) failed"
        except Exception:  # pylint: disable=broad-except
            return "networkgrpc.CallFailed"
