"""Tells where a device's control interface is and which switch mode is in effect."""

from networkgrpc import network

for control in network.get_control_interfaces_info():
    print(f"control {control.ip} netmask {control.netmask} MAC {control.mac}")
print(f"switch mode {network.get_current_switch_mode().id}")
