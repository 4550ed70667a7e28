"""Print the addresses of a device's control interface and the switch mode in effect."""

from networkgrpc import network

for control in network.get_control_interfaces_info():
    print(f"control {control.ip} netmask {control.netmask} MAC {control.mac}")
print(f"switch mode {network.get_current_switch_mode().id}")
