# shellcheck shell=bash
# Installing Debian packages: sourced by the scripts that need some, never run by itself.

# install_packages PACKAGE... - installs those that are missing, with sudo when not root.
install_packages() {
    local package missing=() as_root=()
    for package in "$@"; do
        dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            missing+=("$package")
    done
    if ((${#missing[@]} == 0)); then
        return 0
    fi
    if ((EUID != 0)); then
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}
