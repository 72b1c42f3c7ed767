# Signatures beside packages: what the signing tools of all targets share. To be sourced by a
# tool that defines usage().
#
# A signature is a detached CMS signature (DER) of all bytes of the package. It lies beside the
# package: the signatures of a.rpm are a.rpm.1.p7s, a.rpm.2.p7s and so on, without a gap. The
# package itself is never written.

PATH=/usr/bin:/bin
LC_ALL=C.UTF-8
tool=${0##*/}
target=${0%/*}/..
OPENSSL_CONF=$target/etc/openssl.cnf
export PATH LC_ALL OPENSSL_CONF

fail() {
    printf '%s: error: %s\n' "$tool" "$1" >&2
    exit 1
}

fail_usage() {
    printf '%s: error: %s\n' "$tool" "$1" >&2
    usage >&2
    exit 2
}

# What stands for the option $1 must be there and not be empty: $2 is the number of words from
# the option on, $3 the word after it.
require_value() {
    if [ "$2" -lt 2 ] || [ -z "$3" ]; then
        fail_usage "$1 needs a path"
    fi
}

require_file() { # WHAT PATH
    [ -f "$2" ] || fail "$1 not found: $2"
    [ -r "$2" ] || fail "$1 cannot be read: $2"
}

require_packages() { # PACKAGE...
    [ $# -gt 0 ] || fail_usage 'no packages given'
    for package; do
        require_file package "$package"
        magic=$(od -An -tx1 -N4 <"$package")
        [ "$magic" = ' ed ab ee db' ] || fail "not an RPM package: $package"
    done
}

# True when PACKAGE has a signature NUMBER, whose path is then in $signature.
find_signature() { # PACKAGE NUMBER
    signature=$1.$2.p7s
    [ -f "$signature" ]
}

# --- Signing ---

# Signatures are made in a folder of their own and put beside the packages when all are there,
# so that a run that fails or is stopped leaves every package as it was.
begin_signing() {
    work=$(mktemp -d) || fail 'cannot make a temporary folder'
    trap 'rm -rf "$work"' EXIT
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
    round=0
}

# Leaves the private key of the file $1 in $key. The key is read once, so that openssl asks for
# its pass phrase once, however many packages there are. In the clear it exists only in this
# shell and in pipes: never in arguments, in the environment or in a file.
read_key() {
    require_file key "$1"
    unset key # or it would stay exported when the caller's environment has a variable "key"
    if ! key=$(openssl pkey -in "$1" 2>"$work/errors"); then
        fail "$(key_fault "$1")"
    fi
}

# A sentence on why openssl could not read the key of the file $1.
key_fault() {
    case $(cat "$work/errors") in
    *'bad decrypt'* | *'maybe wrong password'* | *'empty password'*)
        printf 'wrong pass phrase for the key: %s' "$1" ;;
    *'processing error'* | *'getting password'* | *'unable to get passphrase'*)
        printf 'no pass phrase given for the key: %s' "$1" ;;
    *)
        printf 'cannot read a private key from: %s' "$1" ;;
    esac
}

# Makes one signature for each package with $key.
make_signatures() { # CERTIFICATE PACKAGE...
    certificate=$1
    shift
    require_file certificate "$certificate"
    case $(openssl x509 -in "$certificate" -noout -checkend 0 2>/dev/null) in
    *'will expire'*) fail "the certificate has expired: $certificate" ;;
    esac
    round=$((round + 1))
    index=0
    for package; do
        index=$((index + 1))
        printf '%s\n' "$key" | openssl cms -sign -binary -nosmimecap -in "$package" \
            -signer "$certificate" -inkey /dev/stdin -outform DER -out "$work/$index.$round" \
            2>"$work/errors" || fail "$(signing_fault)"
    done
}

signing_fault() {
    case $(cat "$work/errors") in
    *'does not match certificate'*)
        printf 'the key does not fit the certificate: %s' "$certificate" ;;
    *'Could not read signer certificate'*)
        printf 'cannot read a certificate from: %s' "$certificate" ;;
    *)
        printf 'cannot sign %s: %s' "$package" "$(head -n 1 "$work/errors")" ;;
    esac
}

# Puts the signatures of all rounds beside the packages, or none when one cannot be written.
install_signatures() { # PACKAGE...
    trap '' HUP INT TERM
    discard_staged "$@" # a run that was killed may have left some
    index=0
    for package; do
        index=$((index + 1))
        if ! stage_signatures 2>/dev/null; then
            discard_staged "$@"
            fail "cannot write signatures beside the package: $package"
        fi
    done
    for package; do
        for staged in "$package".*.p7s.new; do
            [ ! -f "$staged" ] || mv -fT -- "$staged" "${staged%.new}" || {
                discard_staged "$@"
                fail "cannot put a signature beside the package: $package"
            }
        done
        printf 'Signed: %s\n' "$package"
    done
}

# Copies the signatures of package $index to where a rename makes them final.
stage_signatures() {
    number=1
    while find_signature "$package" "$number"; do
        number=$((number + 1))
    done
    made=0
    while [ "$made" -lt "$round" ]; do
        made=$((made + 1))
        [ ! -e "$package.$number.p7s" ] || return 1 # something that is no file
        cp -T -- "$work/$index.$made" "$package.$number.p7s.new" || return 1
        number=$((number + 1))
    done
}

discard_staged() { # PACKAGE...
    for owner; do
        for staged in "$owner".*.p7s.new; do
            [ ! -f "$staged" ] || rm -f -- "$staged"
        done
    done
}

# --- Deleting, showing and checking ---

delete_signatures() { # PACKAGE...
    require_packages "$@"
    for package; do
        count=0
        while find_signature "$package" $((count + 1)); do
            count=$((count + 1))
        done
        # From the last one on: were the first ones missing after an interruption, the rest would
        # not be found any more.
        number=$count
        while [ "$number" -gt 0 ]; do
            find_signature "$package" "$number"
            rm -f -- "$signature" || fail "cannot remove: $signature"
            number=$((number - 1))
        done
        printf '%s: %d signatures removed\n' "$package" "$count"
    done
}

print_absolute() { # PATH
    case $1 in
    /*) printf '%s\n' "$1" ;;
    *) printf '%s/%s\n' "$PWD" "$1" ;;
    esac
}

# Of several packages, each one's path comes before its signatures. Of a single one it comes last: the
# dump then begins with its first signature.
dump_signatures() { # PACKAGE...
    require_packages "$@"
    for package; do
        [ $# -eq 1 ] || print_absolute "$package"
        number=1
        while find_signature "$package" "$number"; do
            openssl cms -cmsout -print -noout -inform DER -in "$signature" \
                -nameopt RFC2253,-esc_msb 2>/dev/null | awk -f "$target/lib/describe.awk" ||
                fail "cannot read the signature: $signature"
            number=$((number + 1))
        done
    done
    [ $# -gt 1 ] || print_absolute "$package"
}

# Checks every signature of every package. An empty ROOTS stands for the target's own bundle.
verify_signatures() { # ROOTS PACKAGE...
    roots=${1:-$target/etc/root.pem}
    shift
    require_file 'root certificate' "$roots"
    require_packages "$@"
    verdict=0
    for package; do
        number=1
        while find_signature "$package" "$number"; do
            verify_signature || verdict=1
            number=$((number + 1))
        done
        if [ "$number" -eq 1 ]; then
            printf '%s: not signed\n' "$package"
            verdict=1
        fi
    done
    [ "$verdict" -eq 0 ] || fail 'verification failed'
}

# Without the -no options the system's own roots would be trusted, too.
verify_signature() {
    if errors=$(openssl cms -verify -binary -inform DER -in "$signature" -content "$package" \
        -CAfile "$roots" -no-CApath -no-CAstore -purpose any -out /dev/null 2>&1); then
        printf '%s: signature %d is valid\n' "$package" "$number"
    else
        printf '%s: signature %d is NOT valid: %s\n' "$package" "$number" "$(verification_fault)"
        return 1
    fi
}

verification_fault() {
    case $errors in
    *'certificate has expired'*)
        printf 'its certificate has expired' ;;
    *'certificate is not yet valid'*)
        printf 'its certificate is not valid yet' ;;
    *'unable to get local issuer'* | *'self-signed certificate'* | *'self signed certificate'*)
        printf 'its certificate is not issued by a trusted root' ;;
    *'Verify error'*)
        printf 'its certificate is refused: %s' "${errors##*Verify error: }" ;;
    *'content verify error'*)
        printf 'the package was changed after it was signed' ;;
    *'Error loading file'*)
        printf 'no root certificate can be read from %s' "$roots" ;;
    *)
        printf 'it cannot be read' ;;
    esac
}
