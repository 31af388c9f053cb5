# Shared by the programs that run on the workstation: messages, and the check whether this machine
# can run the meter. Sourced by bash.

# The meter's user is root, but only with the capabilities to set up its network and mounts, so file
# permissions apply to it, too.
# shellcheck disable=SC2034 # used by those who source this file
namespace_options=(--unshare-all --unshare-user --uid 0 --gid 0
    --cap-drop ALL --cap-add CAP_NET_ADMIN --cap-add CAP_SYS_ADMIN --hostname meter)

# Ordinary users often have no sbin on their PATH.
PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 70
}

sandbox_program() {
    command -v bwrap || fail "bubblewrap (bwrap) is missing: apt-get install bubblewrap"
}

# Prints a clear message if the kernel or a container forbids what the meter needs.
require_sandbox() {
    local bwrap answer
    bwrap=$(sandbox_program)
    answer=$("$bwrap" "${namespace_options[@]}" --ro-bind / / --dev /dev --proc /proc -- true 2>&1) && return
    local knob
    for knob in kernel/unprivileged_userns_clone:1 user/max_user_namespaces: \
        kernel/apparmor_restrict_unprivileged_userns:0; do
        local file=/proc/sys/${knob%%:*} wanted=${knob#*:} value
        [ -r "$file" ] || continue
        value=$(<"$file")
        if [ "$wanted" = 1 ] && [ "$value" = 0 ] || [ "$wanted" = 0 ] && [ "$value" != 0 ] ||
            [ -z "$wanted" ] && [ "$value" = 0 ]; then
            fail "this kernel gives ordinary users no namespaces (${file#/proc/sys/} is $value), which bubblewrap needs."
        fi
    done
    fail "bubblewrap cannot make its namespaces here (${answer##*$'\n'}); a container needs the right to nest them."
}
