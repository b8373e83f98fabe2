-- Dissects the datagrams of device discovery: JSON over UDP, devices on port 12000, hosts on port 12001.
--
-- A message is read as the library reads it: keys match without regard to case, the first of several counts, what
-- follows the closing brace is ignored. What the library would drop is an error, what it would only leave out a warning.

local discovery = Proto("devicediscovery", "Device Discovery")

local PORTS = {12000, 12001}
local DEEPEST_NESTING = 1000

local fields = {
    kind = ProtoField.string("devicediscovery.kind", "Kind"),
    version = ProtoField.string("devicediscovery.version", "Protocol version"),
    broadcast = ProtoField.bool("devicediscovery.broadcast", "Broadcast"),
    target = ProtoField.ether("devicediscovery.target_mac", "Targeted MAC address"),
    new_name = ProtoField.string("devicediscovery.new_host_name", "New host name"),
    host = ProtoField.none("devicediscovery.host", "Host"),
    host_name = ProtoField.string("devicediscovery.host_name", "Host name"),
    name_read_only = ProtoField.bool("devicediscovery.host_name_read_only", "Host name is read-only"),
    ip_needs_reboot = ProtoField.bool("devicediscovery.ip_config_needs_reboot", "New IP settings need a reboot"),
    name_needs_reboot = ProtoField.bool("devicediscovery.host_name_needs_reboot", "A new host name needs a reboot"),
    device_type = ProtoField.string("devicediscovery.device_type", "Device type"),
    device_family = ProtoField.string("devicediscovery.device_family", "Device family"),
    serial_number = ProtoField.string("devicediscovery.serial_number", "Serial number"),
    nic = ProtoField.none("devicediscovery.nic", "Network interface"),
    source_nic = ProtoField.none("devicediscovery.source_nic", "Source interface"),
    new_nic = ProtoField.none("devicediscovery.new_nic", "New settings"),
    nic_name = ProtoField.string("devicediscovery.nic.name", "Name"),
    nic_mac = ProtoField.ether("devicediscovery.nic.mac", "MAC address"),
    nic_ip = ProtoField.ipv4("devicediscovery.nic.ip", "IP address"),
    nic_mask = ProtoField.ipv4("devicediscovery.nic.mask", "Subnet mask"),
    nic_gateway = ProtoField.ipv4("devicediscovery.nic.gateway", "Default gateway"),
    nic_mtu = ProtoField.string("devicediscovery.nic.mtu", "MTU"),
    product = ProtoField.none("devicediscovery.product", "Product"),
    product_name = ProtoField.string("devicediscovery.product.name", "Name"),
    product_version = ProtoField.string("devicediscovery.product.version", "Version"),
    product_type = ProtoField.string("devicediscovery.product.type", "Type"),
    product_serial_number = ProtoField.string("devicediscovery.product.serial_number", "Serial number"),
    file_transfer = ProtoField.none("devicediscovery.file_transfer", "File transfer"),
    file_transfer_info = ProtoField.string("devicediscovery.file_transfer.info", "Info"),
    json = ProtoField.string("devicediscovery.json", "JSON"),
}
discovery.fields = fields

local experts = {
    malformed = ProtoExpert.new(
        "devicediscovery.malformed", "Malformed message", expert.group.MALFORMED, expert.severity.ERROR),
    ignored = ProtoExpert.new(
        "devicediscovery.ignored", "Ignored part of a message", expert.group.PROTOCOL, expert.severity.WARN),
    assumed = ProtoExpert.new(
        "devicediscovery.assumed", "Missing part of a message", expert.group.PROTOCOL, expert.severity.NOTE),
}
discovery.experts = experts

-- JSON ---------------------------------------------------------------------------------------------------------------
-- A value is a table: kind, first and last (positions in the text, from 1), and text, value, members or items.

local function fail(position, what)
    error({json = what .. " at byte " .. position}, 0)
end

local ESCAPES = {b = "\b", f = "\f", n = "\n", r = "\r", t = "\t", ['"'] = '"', ["\\"] = "\\", ["/"] = "/"}

local function utf8_text(code)
    if code < 0x80 then
        return string.char(code)
    elseif code < 0x800 then
        return string.char(0xC0 + math.floor(code / 0x40), 0x80 + code % 0x40)
    elseif code < 0x10000 then
        return string.char(
            0xE0 + math.floor(code / 0x1000), 0x80 + math.floor(code / 0x40) % 0x40, 0x80 + code % 0x40)
    end
    return string.char(
        0xF0 + math.floor(code / 0x40000),
        0x80 + math.floor(code / 0x1000) % 0x40,
        0x80 + math.floor(code / 0x40) % 0x40,
        0x80 + code % 0x40)
end

-- Reads \uXXXX at the position of its backslash; the character and the position behind it.
local function read_code_point(text, position)
    local digits = text:match("^\\u(%x%x%x%x)", position)
    if not digits then
        fail(position, "bad escape")
    end
    local code = tonumber(digits, 16)
    if code >= 0xD800 and code <= 0xDBFF then
        local low = tonumber(text:match("^\\u(%x%x%x%x)", position + 6) or "0", 16)
        if low < 0xDC00 or low > 0xDFFF then
            fail(position, "half a surrogate pair")
        end
        return utf8_text(0x10000 + (code - 0xD800) * 0x400 + low - 0xDC00), position + 12
    end
    if code >= 0xDC00 and code <= 0xDFFF then
        fail(position, "half a surrogate pair")
    end
    return utf8_text(code), position + 6
end

local function read_string(text, first)
    local parts = {}
    local position = first + 1
    while true do
        local stop = text:find('["\\]', position)
        if not stop then
            fail(first, "string without an end")
        end
        parts[#parts + 1] = text:sub(position, stop - 1)
        local escape = text:sub(stop + 1, stop + 1)
        if text:byte(stop) == 0x22 then
            return {kind = "string", first = first, last = stop, text = table.concat(parts)}
        elseif escape == "u" then
            parts[#parts + 1], position = read_code_point(text, stop)
        elseif ESCAPES[escape] then
            parts[#parts + 1], position = ESCAPES[escape], stop + 2
        else
            fail(stop, "bad escape")
        end
    end
end

local read_value

local function skip_blanks(text, position)
    return text:match("^[\1-\32]*()", position)
end

-- Reads what stands between brackets; read_element(position) reads one element and gives the position behind it.
local function read_elements(text, first, closing, read_element)
    local position = skip_blanks(text, first + 1)
    if text:sub(position, position) == closing then
        return position
    end
    while true do
        position = skip_blanks(text, read_element(position))
        local sign = text:sub(position, position)
        if sign == closing then
            return position
        elseif sign ~= "," then
            fail(position, '"," or "' .. closing .. '" is missing')
        end
        position = skip_blanks(text, position + 1)
    end
end

local function read_object(text, first, depth)
    local object = {kind = "object", first = first, members = {}}
    object.last = read_elements(text, first, "}", function(position)
        if text:sub(position, position) ~= '"' then
            fail(position, "a key is missing")
        end
        local key = read_string(text, position)
        position = skip_blanks(text, key.last + 1)
        if text:sub(position, position) ~= ":" then
            fail(position, '":" is missing')
        end
        local value = read_value(text, skip_blanks(text, position + 1), depth + 1)
        table.insert(object.members, {key = key.text, value = value})
        return value.last + 1
    end)
    return object
end

local function read_array(text, first, depth)
    local array = {kind = "array", first = first, items = {}}
    array.last = read_elements(text, first, "]", function(position)
        local value = read_value(text, position, depth + 1)
        table.insert(array.items, value)
        return value.last + 1
    end)
    return array
end

function read_value(text, position, depth)
    if depth > DEEPEST_NESTING then
        fail(position, "nested too deeply")
    end
    local sign = text:sub(position, position)
    if sign == "{" then
        return read_object(text, position, depth)
    elseif sign == "[" then
        return read_array(text, position, depth)
    elseif sign == '"' then
        return read_string(text, position)
    end
    for literal, value in pairs({["true"] = true, ["false"] = false}) do
        if text:sub(position, position + #literal - 1) == literal then
            return {kind = "boolean", first = position, last = position + #literal - 1, value = value}
        end
    end
    if text:sub(position, position + 3) == "null" then
        return {kind = "null", first = position, last = position + 3}
    end
    local number = text:match("^[-+%d.eE]+", position)
    if number and tonumber(number) then
        return {kind = "number", first = position, last = position + #number - 1}
    end
    fail(position, position > #text and "the text ends too early" or "no JSON value")
end

-- The object that the text is, or nothing and what is wrong.
local function parse(text)
    text = text:match("^[^\0]*")
    local done, result = pcall(function()
        return read_value(text, skip_blanks(text, 1), 1)
    end)
    if not done then
        return nil, type(result) == "table" and result.json or "nested too deeply"
    elseif result.kind ~= "object" then
        return nil, "not an object"
    end
    return result
end

-- The member that the library would take; nothing when it is missing or of another kind.
local function member(object, key, kind)
    for _, each in ipairs(object.members) do
        if each.key:lower() == key:lower() then
            return each.value.kind == kind and each.value or nil
        end
    end
end

-- Values -------------------------------------------------------------------------------------------------------------

local function normal_mac(text)
    local parts = {}
    for part in (text .. ":"):gmatch("(%x%x?):") do
        parts[#parts + 1] = ("%02x"):format(tonumber(part, 16))
    end
    local is_whole = text:match("^%x%x?:%x%x?:%x%x?:%x%x?:%x%x?:%x%x?$")
    return is_whole and table.concat(parts, ":") or nil
end

local function normal_ip(text)
    local parts = {text:match("^(%d%d?%d?)%.(%d%d?%d?)%.(%d%d?%d?)%.(%d%d?%d?)$")}
    for i, part in ipairs(parts) do
        parts[i] = tonumber(part)
        if parts[i] > 255 then
            return nil
        end
    end
    return #parts == 4 and table.concat(parts, ".") or nil
end

local function is_version(text)
    local rest = text:match("^%d+%.%d+(.*)$")
    return rest ~= nil and (rest == "" or rest:match("^%.%d+$") or rest:match("^%.%d+%.%d+$")) ~= nil
end

-- What a device chose, made fit for one line of a terminal.
local function visible(text)
    return (text:gsub("\194[\128-\159]", "?"):gsub("%c", function(character)
        return ("\\x%02X"):format(character:byte())
    end))
end

-- Messages -----------------------------------------------------------------------------------------------------------

-- One message on its way into the tree.
local Message = {}
Message.__index = Message

function Message:range(value)
    return self.buffer(value.first - 1, value.last - value.first + 1)
end

-- The library drops the message for this.
function Message:refuse(item, what)
    item:add_proto_expert_info(experts.malformed, what)
    self.defect = self.defect or what
end

-- Each reader gives the text that the library has afterwards, or nothing when the member is no good. options:
-- optional when its absence is no defect, report(item, what) for a defect.

function Message:string(item, object, key, field, options)
    options = options or {}
    local value = member(object, key, "string")
    if not value then
        if not options.optional then
            (options.report or self.refuse)(self, item, key .. " is missing")
        end
        return nil
    end
    item:add(field, self:range(value), value.text)
    return value.text
end

function Message:address(item, object, key, field, normalize, make, options)
    options = options or {}
    local value = member(object, key, "string")
    if not value then
        (options.report or self.refuse)(self, item, key .. " is missing")
        return nil
    end
    if options.may_be_empty and value.text == "" then
        return ""
    end
    local address = normalize(value.text)
    if not address then
        (options.report or self.refuse)(self, item, ('%s is no address: "%s"'):format(key, visible(value.text)))
        return nil
    end
    item:add(field, self:range(value), make(address))
    return address
end

function Message:mac(item, object, key, field, options)
    return self:address(item, object, key, field, normal_mac, Address.ether, options)
end

function Message:ip(item, object, key, field, options)
    return self:address(item, object, key, field, normal_ip, Address.ip, options)
end

function Message:flag(item, object, key, field)
    local value = member(object, key, "boolean")
    if value then
        item:add(field, self:range(value), value.value)
    end
end

-- One network interface. report(self, item, what) says how bad a defect is.
function Message:nic(parent, object, field, report)
    local item = parent:add(field, self:range(object))
    local options = {report = report}
    local nic = {
        name = self:string(item, object, "FriendlyName", fields.nic_name, options),
        mac = self:mac(item, object, "MACAddress", fields.nic_mac, options),
        ip = self:ip(item, object, "IPAddress", fields.nic_ip, options),
        mask = self:ip(item, object, "SubNetMask", fields.nic_mask, options),
        gateway = self:ip(
            item, object, "DefaultGateway", fields.nic_gateway, {report = report, may_be_empty = true}),
    }
    self:string(item, object, "MTU", fields.nic_mtu, {optional = true})
    item:append_text((" %s: %s at %s"):format(visible(nic.name or "?"), nic.mac or "?", nic.ip or "?"))
    return nic
end

function Message:product(parent, object)
    local item = parent:add(fields.product, self:range(object))
    local name = self:string(item, object, "ProductName", fields.product_name)
    local version = self:string(item, object, "ProductVersion", fields.product_version)
    self:string(item, object, "ProductType", fields.product_type)
    self:string(item, object, "ProductSerialNumber", fields.product_serial_number)
    item:append_text((": %s %s"):format(visible(name or "?"), visible(version or "?")))
end

-- Calls action for each element of an array that has to be there and to hold nothing but objects.
function Message:each(item, object, key, action)
    local array = member(object, key, "array")
    if not array then
        self:refuse(item, key .. " is missing")
        return
    end
    for _, element in ipairs(array.items) do
        if element.kind == "object" then
            action(element)
        else
            self:refuse(item, key .. " holds something that is no object")
        end
    end
end

function Message:host(parent, object)
    local item = parent:add(fields.host, self:range(object))
    local host = {nics = {}}
    host.name = self:string(item, object, "HostName", fields.host_name)
    host.type = self:string(item, object, "DeviceType", fields.device_type)
    self:string(item, object, "DeviceFamily", fields.device_family, {optional = true})
    self:string(item, object, "SerialNumber", fields.serial_number, {optional = true})
    self:flag(item, object, "IsHostNameReadOnly", fields.name_read_only)
    self:flag(item, object, "RebootRequiredForIPConfigChange", fields.ip_needs_reboot)
    self:flag(item, object, "RebootRequiredForHostNameChange", fields.name_needs_reboot)
    self:each(item, object, "NICs", function(element)
        table.insert(host.nics, self:nic(item, element, fields.nic, self.refuse))
    end)
    self:each(item, object, "Products", function(element)
        self:product(item, element)
    end)
    local transfer = member(object, "FileTransferInfos", "object")
    if transfer then
        local infos = item:add(fields.file_transfer, self:range(transfer))
        for _, each in ipairs(transfer.members) do
            if each.value.kind == "string" then
                infos:add(fields.file_transfer_info, self:range(each.value), each.key .. ": " .. each.value.text)
            end
        end
    end
    item:append_text(": " .. visible(host.name or "?"))
    return host
end

-- Readers of the kinds: add what the kind has to the tree, and give the sentence for the info column.

local function warn(message, item, what)
    item:add_proto_expert_info(experts.ignored, what .. ", so this part is ignored")
end

-- A request goes to the device that the datagram was sent to, or to the one that owns the MAC address.
local function target(message, item, object)
    local mac = message:mac(item, object, "TargetedMACAddress", fields.target)
    return message.is_broadcast and "at " .. message.destination or mac or "?"
end

local function device_reader(sentence)
    return function(message, item, object)
        local host_object = member(object, "Host", "object")
        if not host_object then
            message:refuse(item, "Host is missing")
            return ""
        end
        local host = message:host(item, host_object)
        local nic = host.nics[1] or {}
        local source = member(object, "SourceNIC", "object")
        if source then
            local from = message:nic(item, source, fields.source_nic, warn)
            nic = from.ip and from or nic
        end
        return sentence:format(
            ("%s (%s at %s)"):format(visible(host.name or "?"), visible(host.type or "?"), nic.ip or "no address"))
    end
end

local readers = {
    SignatureBroadcast = device_reader("%s tells its signature"),
    Hello = device_reader("%s says Hello"),
    Bye = device_reader("%s says Bye"),

    AllSendYourSignature = function()
        return "Asks all devices for their signatures"
    end,

    SendYourSignature = function(message, item, object)
        return "Asks the device " .. target(message, item, object) .. " for its signature"
    end,

    ChangeYourHostName = function(message, item, object)
        local name = message:string(item, object, "NewHostName", fields.new_name)
        return ('Gives the device %s the host name "%s"'):format(target(message, item, object), visible(name or "?"))
    end,

    ChangeYourIPConfig = function(message, item, object)
        local array = member(object, "NewNICConfigs", "array")
        if not array then
            message:refuse(item, "NewNICConfigs is missing")
            return ""
        end
        local changes = {}
        for _, element in ipairs(array.items) do
            if element.kind == "object" then
                local nic = message:nic(item, element, fields.new_nic, warn)
                table.insert(changes, (nic.mac or "?") .. " the address " .. (nic.ip or "?"))
            else
                warn(message, item, "NewNICConfigs holds something that is no object")
            end
        end
        return "Gives " .. (#changes == 0 and "nothing new" or table.concat(changes, ", "))
    end,
}

function Message:read_broadcast(item, object)
    local value = member(object, "Broadcast", "string")
    if not value then
        item:add_proto_expert_info(experts.assumed, "Broadcast is missing, which means True")
        item:add(fields.broadcast, true):set_generated()
    elseif value.text == "True" or value.text == "False" then
        item:add(fields.broadcast, self:range(value), value.text == "True")
    else
        self:refuse(item, ('Broadcast is neither True nor False: "%s"'):format(visible(value.text)))
    end
    return not value or value.text == "True"
end

-- The sentence for the info column.
function Message:read(item, object)
    local kind = self:string(item, object, "DiscoveryMessageType", fields.kind)
    if kind and not readers[kind] then
        self:refuse(item, ('DiscoveryMessageType is unknown: "%s"'):format(visible(kind)))
    end
    local version = self:string(item, object, "DiscoveryVersion", fields.version)
    if version and not is_version(version) then
        self:refuse(item, ('DiscoveryVersion is no version: "%s"'):format(visible(version)))
    end
    self.is_broadcast = self:read_broadcast(item, object)
    if not kind or not readers[kind] then
        return ""
    end
    item:append_text(", " .. kind)
    return readers[kind](self, item, object)
end

function discovery.dissector(buffer, packet, tree)
    packet.cols.protocol = "DISCOVERY"
    local item = tree:add(discovery, buffer())
    local message = setmetatable({buffer = buffer, destination = tostring(packet.dst)}, Message)
    local text = buffer:len() > 0 and buffer():raw() or ""
    local object, defect = parse(text)
    local sentence = ""
    if object then
        sentence = message:read(item, object)
    else
        message:refuse(item, "No JSON object: " .. defect)
    end
    if buffer:len() > 0 then
        item:add(fields.json, buffer(), text)
    end
    packet.cols.info = message.defect and "Malformed: " .. message.defect or sentence
    return buffer:len()
end

for _, port in ipairs(PORTS) do
    DissectorTable.get("udp.port"):add(port, discovery)
end
