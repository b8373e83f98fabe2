"use strict";

async function show() {
    const answer = await fetch("/devices.json");
    const inventory = await answer.json();
    const list = document.getElementById("devices");
    for (const device of inventory.Devices) {
        const item = document.createElement("li");
        item.textContent = `${device.Site} ${device.Device} ${device.State} ${device.Host.HostName}`;
        list.append(item);
    }
}

show();
