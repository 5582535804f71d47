#!/bin/sh
# Runs a test program in an emulator of user programs. Where one starts itself anew, as some death
# tests do, it starts what it believes to be itself: a script beside it, which does the same as this.
#
#   emulated.sh EMULATOR PROGRAM [ARGUMENT...]
set -eu
emulator=$1
program=$2
shift 2

start=$program.start
cat >"$start.$$" <<END
#!/bin/sh
exec "$emulator" -0 "\$0" "$program" "\$@"
END
chmod +x "$start.$$"
mv "$start.$$" "$start"
exec "$start" "$@"
