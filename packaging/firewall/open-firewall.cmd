@echo off
rem Lets answers and announcements of devices in, for all programs. Run it as administrator.
netsh advfirewall firewall add rule name=DiscoveryServer dir=in action=allow protocol=UDP localport=12001
