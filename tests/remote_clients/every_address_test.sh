#!/usr/bin/env bash
# A host name that resolves to several addresses: frontpanel-ctl tries each in turn. The name
# "dual.test" resolves to ::1 first, where nothing listens, and then to 127.0.0.1, where the
# simulator does; the resolver is given that list by nss_wrapper (libnss-wrapper), so no system
# file changes and no query leaves the machine.
# Usage: every_address_test.sh SIM CTL NSS_WRAPPER_LIBRARY
set -euo pipefail
sim=$1 ctl=$2 wrapper=$3

# shellcheck source=tests/support/listening_sim.sh
source "$(dirname "$0")/../support/listening_sim.sh"
make_work_dir
start_listening_sim "$sim" --headless --idle 0 --listen 127.0.0.1:0
port=${tcp##*:}

printf '::1 dual.test\n127.0.0.1 dual.test\n' > "$work/hosts"
# In the sanitizer builds: ASan wants its runtime first among the loaded libraries (the wrapper
# comes first here), and TSan cannot follow the locks of the wrapper, which is not instrumented
# and unlocks a mutex it initialised before TSan started; this test is about resolving, the
# client's threads are checked by the test suite.
resolving() {
    LD_PRELOAD=$wrapper NSS_WRAPPER_HOSTS=$work/hosts NSS_WRAPPER_PASSWD=/etc/passwd \
        NSS_WRAPPER_GROUP=/etc/group ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}verify_asan_link_order=0 \
        TSAN_OPTIONS=${TSAN_OPTIONS:+$TSAN_OPTIONS:}report_bugs=0 "$@"
}

first=$(resolving getent ahosts dual.test | head -n 1)
case $first in
    ::1*) ;;
    *) echo "nss_wrapper did not give ::1 first for dual.test: $first" >&2; exit 1 ;;
esac
if "$ctl" --timeout 5 "[::1]:$port" '*IDN?' > /dev/null 2>&1; then
    echo "something answers on [::1]:$port: the first address must refuse for this test" >&2
    exit 1
fi

answer=$(resolving "$ctl" --timeout 5 "dual.test:$port" '*IDN?')
echo "dual.test:$port answered: $answer"
case $answer in
    *,*,*,*) ;;
    *) echo "expected the identity from dual.test:$port, got: $answer" >&2; exit 1 ;;
esac
