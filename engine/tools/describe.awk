# Reads openssl's printed form of one CMS signature and writes the five lines of a dump.
# The exit code is 1 when there is no signature in the text.

# The text after the first colon, without the number that openssl adds to an algorithm's name.
function value(line) {
    sub(/^[^:]*: */, "", line)
    sub(/ \([0-9.]+\)$/, "", line)
    return line
}

# The names of the organisational units, in the order of the certificate, go to units[].
# RFC 2253 writes a name's parts from the last to the first and escapes with a backslash. Control
# characters are written as \0A and the like; they stay so, or a line would not be one.
function readUnits(name,    parts, i) {
    gsub(/\\\\/, "\001", name)
    gsub(/\\,/, "\002", name)
    gsub(/\\\+/, "\003", name)
    for (i = split(name, parts, /[,+]/); i > 0; --i) {
        if (sub(/^OU=/, "", parts[i])) {
            while (match(parts[i], /\\[^0-9A-F]/))
                parts[i] = substr(parts[i], 1, RSTART - 1) substr(parts[i], RSTART + 1)
            gsub(/\001/, "\\", parts[i])
            gsub(/\002/, ",", parts[i])
            gsub(/\003/, "+", parts[i])
            units[++unitCount] = parts[i]
        }
    }
}

# With a blank behind each comma between two parts, so that a long name can be wrapped.
function spaced(name) {
    gsub(/\\\\/, "\001", name)
    gsub(/\\,/, "\002", name)
    gsub(/,/, ", ", name)
    gsub(/\002/, "\\,", name)
    gsub(/\001/, "\\\\\\\\", name)
    return name
}

function orNone(text) {
    return text == "" ? "none" : text
}

/^ *serialNumber: / && serial == "" { serial = value($0) }
/^ *subject: / && subject == "" { subject = value($0) }

# "0000 - 04 14 76 3b f1 76 ac 3c-ca 4f bc   ..v;.v.<.O." after the extension's name
/object: X509v3 Subject Key Identifier/ { inKeyId = 1; next }
inKeyId && /^ *$/ { inKeyId = 0 }
inKeyId && / - / {
    sub(/^ *[0-9a-f]+ - /, "")
    sub(/   .*$/, "")
    gsub(/[ -]/, "")
    keyId = keyId $0
}

/object: signingTime/ { inTime = 1 }
inTime && /TIME:/ { time = value($0); inTime = 0 }
/^ *(digestAlgorithm|signatureAlgorithm):/ { kind = $1; next }
kind != "" && /algorithm:/ { algorithms[kind] = value($0); kind = "" }

END {
    if (!("signatureAlgorithm:" in algorithms))
        exit 1
    readUnits(subject)
    print "Subject: " spaced(subject)
    print "Group: " orNone(units[1])
    print "Subgroup: " orNone(units[2])
    # The identifier is a DER string: two bytes for its type and length come first.
    print "Key ID: " (keyId != "" ? toupper(substr(keyId, 5)) : "serial number " serial)
    print "Signature: " algorithms["signatureAlgorithm:"] ", " \
          algorithms["digestAlgorithm:"] ", " orNone(time)
}
