#!/bin/bash
HERE="$(dirname "$0")"
A=$A$A${B:-c}`id`
exec "$HERE/java" -jar 'a b.jar' \$x \
  /y
