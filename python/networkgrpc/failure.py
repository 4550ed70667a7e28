"""What a function raises that is not done."""

from typing import Any, Dict


class CallFailed(Exception):
    """The daemon cannot be reached, failed, or refused.

    The library does not tell these apart; the line that it wrote to standard error
    belongs to this call.

    Attributes:
        function: the full name, such as "networkgrpc.network.set_hostname"
        arguments: what it was called with, by name
    """

    def __init__(self, function: str, arguments: Dict[str, Any]) -> None:
        super().__init__(function, arguments)
        self.function = function
        self.arguments = arguments

    def __str__(self) -> str:
        told = ", ".join(f"{name}={value!r}" for name, value in self.arguments.items())
        return f"{self.function}({told}) was not done"
