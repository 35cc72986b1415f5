#!/usr/bin/env bash
# Keeps one private MariaDB server for whoever started this script, and answers on standard output.
#
#   on start   prints "ready SOCKET TEMPLATE", TEMPLATE being a fresh data folder that others may copy
#   "kill"     kills the server hard, prints "killed"
#   "start"    starts it again on the same data, prints "ready SOCKET TEMPLATE"
#   end of standard input: stops the server and removes its folder; so neither outlives a starter that crashed
#
# A failure prints "failed REASON" and puts the server's log on standard error. SPC_TEST_MARIADB_TEMPLATE names a fresh data
# folder to copy, which is faster than installing one.
set -u

folder=
server=
fail() {
  { echo "private_mariadb: $1"; [ -n "$folder" ] && cat "$folder/install.log" "$folder/err.log" 2>/dev/null; } >&2
  echo "failed $1"
  exit 1
}
remove() {
  if [ -n "$server" ]; then kill -KILL "$server" 2>/dev/null; wait "$server" 2>/dev/null; fi
  if [ -n "$folder" ]; then rm -rf -- "$folder"; fi
}
trap remove EXIT
trap 'exit 1' HUP INT TERM

# Where servers stand, for users too.
PATH=$PATH:/usr/sbin:/sbin

need() { command -v "$1" >/dev/null || fail "the program $1 is missing; the package $2 has it"; }
need mariadb-install-db mariadb-server-core
need mariadbd mariadb-server-core
need mariadb mariadb-client-core
need setpriv util-linux

# The server refuses to run as root.
as_user=(setpriv --pdeathsig KILL)
user=
if [ "$(id -u)" -eq 0 ]; then
  user=nobody
  if id mysql >/dev/null 2>&1; then user=mysql; fi
  as_user+=(--reuid="$user" --regid="$(id -gn "$user")" --clear-groups)
fi

# Nothing here must outlive the run, so nothing waits for the disk.
lax=(--innodb-flush-log-at-trx-commit=2 --innodb-flush-method=O_DIRECT_NO_FSYNC --skip-innodb-doublewrite
  --innodb-log-file-size=64M)

# A server that starts clears its temporary folder, so two must never share one.
own_folder() { mkdir "$folder/tmp" && if [ -n "$user" ]; then chown "$user" "$folder" "$folder/tmp"; fi; }

# --force: no name of this machine is needed, and a bare one has none to look up.
install_data() {
  template=${SPC_TEST_MARIADB_TEMPLATE:-}
  if [ -z "$template" ]; then
    template=$folder/template
    "${as_user[@]}" mariadb-install-db --no-defaults --auth-root-authentication-method=normal --skip-test-db \
      --skip-name-resolve --force --datadir="$template" --tmpdir="$folder/tmp" "${lax[@]}" \
      >"$folder/install.log" 2>&1 || fail "no data folder could be made"
  fi
  "${as_user[@]}" cp -R --sparse=always --reflink=auto -- "$template" "$folder/data" ||
    fail "the data folder could not be copied"
  cat >"$folder/init.sql" <<'SQL'
CREATE USER IF NOT EXISTS spc@localhost IDENTIFIED BY 'spc';
GRANT ALL ON *.* TO spc@localhost;
SQL
}

start() {
  "${as_user[@]}" mariadbd --no-defaults --datadir="$folder/data" --tmpdir="$folder/tmp" --socket="$folder/s.sock" \
    --pid-file="$folder/pid" --skip-networking --character-set-server=utf8mb4 --max-allowed-packet=256M --innodb-buffer-pool-size=256M \
    --max-connections=200 --init-file="$folder/init.sql" "${lax[@]}" --log-error="$folder/err.log" \
    </dev/null >/dev/null 2>&1 &
  server=$!
  for _ in $(seq 1 1200); do
    if mariadb --no-defaults -S "$folder/s.sock" -uspc -pspc -e 'DO 1' >/dev/null 2>&1; then
      echo "ready $folder/s.sock $template"
      return
    fi
    kill -0 "$server" 2>/dev/null || break
    sleep 0.1
  done
  fail "the server did not start"
}

stop_hard() {
  kill -KILL "$server" 2>/dev/null
  wait "$server" 2>/dev/null
  server=
}

# In memory when there is plenty: a schema is made there in a tenth of the time.
spare_kb=$(df --output=avail /dev/shm 2>/dev/null | tail -n 1)
if [ "${spare_kb:-0}" -gt 4000000 ]; then export TMPDIR=/dev/shm; fi
folder=$(mktemp -d) || fail "no temporary folder"
own_folder || fail "the temporary folder could not be given to the server"
install_data
start
while read -r command; do
  case $command in
    kill) stop_hard; echo killed ;;
    start) start ;;
    *) fail "unknown command: $command" ;;
  esac
done
