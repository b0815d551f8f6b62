#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes the KeePass 2 XML databases that make-fixtures.sh hands to keepassxc-cli.

keepass-source.xml: a small database of client groups covering what the importer maps: nested
groups, expiry on some entries (and an ExpiryTime that does not count because Expires is False),
tags, plain and hidden custom attributes, a one-time code, Unicode titles, two entries with history
(one whose password is older than its last change), an entry in the root group and one in the
recycle bin. Dates are written in KDBX 4's encoding (base64 of a little-endian 64-bit count of
seconds since 0001-01-01T00:00:00Z); keepassxc-cli reads them and its export writes them back as
ISO 8601 text, so the importer's tests can check that both encodings of one database give the
same dates.

keepass-300-source.xml: 300 entries in 25 client groups, every one with a password and every
fourth with an expiry date.
"""
import base64
import datetime
import hashlib
import struct
from xml.sax.saxutils import escape


def uuid(name):
    return base64.b64encode(hashlib.md5(name.encode()).digest()).decode()


def kdbx4(iso):
    moment = datetime.datetime.strptime(iso, "%Y-%m-%dT%H:%M:%SZ")
    seconds = (moment - datetime.datetime(1, 1, 1)) // datetime.timedelta(seconds=1)
    return base64.b64encode(struct.pack("<q", seconds)).decode()


def times(created, modified, expiry=None, expires=False):
    created, modified = kdbx4(created), kdbx4(modified)
    expiry = kdbx4(expiry or "2999-12-28T23:59:59Z")
    return (
        "<Times>"
        f"<LastModificationTime>{modified}</LastModificationTime>"
        f"<CreationTime>{created}</CreationTime>"
        f"<LastAccessTime>{modified}</LastAccessTime>"
        f"<ExpiryTime>{expiry}</ExpiryTime>"
        f"<Expires>{'True' if expires else 'False'}</Expires>"
        "<UsageCount>0</UsageCount>"
        f"<LocationChanged>{modified}</LocationChanged>"
        "</Times>"
    )


def string(key, value, protect=False):
    attribute = ' ProtectInMemory="True"' if protect else ""
    return f"<String><Key>{escape(key)}</Key><Value{attribute}>{escape(value)}</Value></String>"


def entry(name, title, user="", password="", url="", notes="", tags="", created="2024-02-01T09:00:00Z",
          modified="2025-06-01T10:30:00Z", expiry=None, expires=False, extra=(), history=""):
    """An entry; history=None for an entry that is itself in a History (it has none)."""
    strings = [string("Title", title), string("UserName", user), string("Password", password, True),
               string("URL", url), string("Notes", notes)]
    strings += [string(k, v, p) for k, v, p in extra]
    return (
        f"<Entry><UUID>{uuid(name)}</UUID><IconID>0</IconID><ForegroundColor/><BackgroundColor/>"
        f"<OverrideURL/><Tags>{escape(tags)}</Tags>{times(created, modified, expiry, expires)}"
        + "".join(strings)
        + f"<AutoType><Enabled>True</Enabled><DataTransferObfuscation>0</DataTransferObfuscation></AutoType>"
        + (f"<History>{history}</History>" if history is not None else "")
        + "</Entry>"
    )


def group(name, title, content):
    return (f"<Group><UUID>{uuid(name)}</UUID><Name>{escape(title)}</Name><Notes/><IconID>48</IconID>"
            f"{times('2024-01-01T00:00:00Z', '2024-01-01T00:00:00Z')}<IsExpanded>True</IsExpanded>"
            f"<DefaultAutoTypeSequence/><EnableAutoType>null</EnableAutoType>"
            f"<EnableSearching>null</EnableSearching><LastTopVisibleEntry>AAAAAAAAAAAAAAAAAAAAAA==</LastTopVisibleEntry>"
            f"{content}</Group>")


def database(root_content, recycle_bin=""):
    return (
        '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
        "<KeePassFile><Meta><Generator>Vorlane fixtures</Generator><DatabaseName>Clients</DatabaseName>"
        "<RecycleBinEnabled>True</RecycleBinEnabled>"
        f"<RecycleBinUUID>{uuid(recycle_bin) if recycle_bin else 'AAAAAAAAAAAAAAAAAAAAAA=='}</RecycleBinUUID>"
        "</Meta><Root>" + group("root", "Clients", root_content) + "<DeletedObjects/></Root></KeePassFile>\n"
    )


def small():
    old = entry("acme-vps", "Acme VPS (old)", "root", "old-password", modified="2024-03-01T08:00:00Z",
                history=None)
    # The password was replaced in September 2024; only the notes changed since, so the password
    # is older than the entry's last modification.
    mail_history = "".join(
        entry("acme-mail", "Acme Mailbox", "info@acme.test", password, modified=modified, history=None)
        for password, modified in [("mail-old-password", "2024-02-01T09:00:00Z"),
                                   ("mail-secret-2", "2024-09-10T08:00:00Z")])
    acme = group("acme", "Acme Corp", "".join([
        entry("acme-vps", "Acme VPS", "root", "vps-secret-1", "https://vps1.acme.test:8443/",
              "Ubuntu 24.04, ssh root@vps1.acme.test", "production;web",
              expiry="2027-03-15T12:00:00Z", expires=True,
              extra=[("Datacenter", "FSN1", False), ("Recovery code", "RC-1111-2222", True),
                     ("Backup PIN", "4711", True)],
              history=old),
        entry("acme-mail", "Acme Mailbox", "info@acme.test", "mail-secret-2", "https://mail.acme.test/",
              "IMAP and SMTP", "mail", history=mail_history),
        group("acme-web", "Websites", entry(
            "acme-shop", "Shop WordPress", "admin", "wp-secret-3", "https://shop.acme.test/wp-admin",
            "", "", expiry="2026-12-31T23:00:00Z", expires=True)),
    ]))
    baker = group("baker", "Bäckerei Müller", "".join([
        entry("baker-webmail", "Webmail Grüße 📧", "müller@bäckerei.test", "päss-wörd-4",
              "https://webmail.bäckerei.test", "Passwort für das Postfach",
              expiry="2030-01-01T00:00:00Z", expires=False,
              extra=[("otp", "otpauth://totp/Baker?secret=JBSWY3DPEHPK3PXP&issuer=Baker", True)]),
        entry("baker-db", "Datenbank", "dbuser", "db-secret-5", "", "MySQL 8 on db.bäckerei.test",
              "datenbank"),
    ]))
    loose = entry("loose", "Router at home", "admin", "router-secret-6", "http://192.168.1.1/")
    recycled = group("recycle", "Recycle Bin", entry("deleted", "Deleted thing", "x", "deleted-secret"))
    return database(acme + baker + loose + recycled, recycle_bin="recycle")


def large():
    groups = []
    for g in range(25):
        client = f"Client {g + 1:02d}"
        entries = []
        for e in range(12):
            n = g * 12 + e
            expires = n % 4 == 0
            entries.append(entry(
                f"e{n}", f"Service {n + 1:03d}", f"user{n}", f"secret-{n:03d}-Xy!",
                f"https://host{n}.client{g + 1:02d}.test/login", f"Entry number {n + 1}",
                expiry=f"2027-{(n % 12) + 1:02d}-15T12:00:00Z", expires=expires))
        groups.append(group(f"g{g}", client, "".join(entries)))
    return database("".join(groups))


with open("keepass-source.xml", "w", encoding="utf-8") as out:
    out.write(small())
with open("keepass-300-source.xml", "w", encoding="utf-8") as out:
    out.write(large())
