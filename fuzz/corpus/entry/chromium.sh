#!/bin/sh
APP=chromium
LIB=/usr/lib/$APP
exec "${LIB}/$APP" $FLAGS "$@"
