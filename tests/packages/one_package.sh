#!/usr/bin/env bash
# Inside the root: installs a package, uses it as use/NAME.sh says, upgrades, uses it again and purges it. Use: one_package.sh NAME
set -euxo pipefail
name=$1

# file_of FOLDER PACKAGE
file_of() { ls /"$1"/"$2"_*.deb; }
# Ours that the package needs come as files as well.
wanted=("$name")
for other in $(dpkg-deb -f "$(file_of packages "$name")" Depends | tr ',' '\n' | sed 's/ *(.*//; s/^ *//'); do
  ! ls /packages/"$other"_*.deb >/dev/null 2>&1 || wanted+=("$other")
done
install_from() {
  local files=() each
  for each in "${wanted[@]}"; do files+=("$(file_of "$1" "$each")"); done
  apt-get install -y -qq --no-install-recommends "${files[@]}"
}

# everything: all files outside what the system itself keeps.
everything() { find / -xdev \( -path /proc -o -path /dev -o -path /var/lib/dpkg -o -path /var/lib/apt -o -path /var/cache -o -path /var/log -o -path /tmp -o -path /root \) -prune -o -print | sort; }
# use: in a new folder, by somebody who has nothing else of ours
use() {
  local folder
  folder=$(mktemp -d)
  (cd "$folder" && bash -euxo pipefail /tests/use/"$name".sh)
  rm -r "$folder"
}

# What the use needs beside the package is there before, so that it is no trace of it.
needed=$(sed -n 's/^# needs: //p' /tests/use/"$name".sh)
# shellcheck disable=SC2086 # a list
[ -z "$needed" ] || apt-get install -y -qq --no-install-recommends $needed
dependencies=$(dpkg-query -W -f '${Package}\n' | sort)
install_from packages
use
install_from newer
for each in "${wanted[@]}"; do dpkg-query -W -f '${Version}\n' "$each" | grep -q '+next$'; done
use
everything >/tmp/before
dpkg -L "${wanted[@]}" | sort -u >/tmp/ours
dpkg --purge "${wanted[@]}"
# Nothing of ours is left: neither a file nor a folder that only we had, nor a state of the package.
everything >/tmp/after
while read -r path; do
  # What is still there belongs to another package as well, as folders do.
  if [ -e "$path" ] || [ -L "$path" ]; then dpkg -S "$path" >/dev/null; fi
done < <(grep -vx '/\.' /tmp/ours)
left=$(comm -13 /tmp/before /tmp/after)
[ -z "$left" ]
for each in "${wanted[@]}"; do
  if dpkg-query -W "$each" 2>/dev/null; then exit 1; fi
done
comm -13 <(echo "$dependencies") <(dpkg-query -W -f '${Package}\n' | sort) | xargs -r apt-get purge -y -qq
