#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Puts an embosser into the state in which it leaves production, and says what it is.

Uses no code of this project, only the service's methods (docs/protocol.md) and Debian's
python3-dbus. As in the library, a setting belongs to a collection, and a flag is false unless
somebody knows better.
"""

import sys

import dbus

SERVICE = "com.tavelornbraille.ConfigurationManager"
COLLECTION = "masterCollectionKey"


def main(serial_number):
    try:
        embosser = dbus.Interface(dbus.SystemBus().get_object(SERVICE, "/", introspect=False),
                                  SERVICE)
        embosser.setSerialNo(serial_number, COLLECTION, False, signature="ssb")
        embosser.setPrintSpeed("Medium", COLLECTION, False, signature="ssb")
        print(embosser.getModel(COLLECTION), embosser.getSerialNo(COLLECTION),
              embosser.getPrintSpeed(COLLECTION))
    except dbus.DBusException as error:
        sys.exit(f"{error.get_dbus_name()}: {error.get_dbus_message()}")


if len(sys.argv) != 2:
    sys.exit(f"usage: {sys.argv[0]} SERIAL-NUMBER")
main(sys.argv[1])
