"""Print a device's name, host name, sample rate and receive channels."""

from networkgrpc import dante, network

print(f"{dante.get_name()} on {network.get_hostname()}, {dante.get_sample_rate()} Hz")
for channel in dante.get_rx_channels():
    print(f"input {channel.id}: {channel.name}")
