# Sourced by scripts/package: the packages for the Linux on which it runs. $tree has the sources,
# $packages gets the packages.

# Everybody may read what is in them, and on Debian root owns it, whoever makes them.
linux_packages() {  # [CMAKE OPTION]...
  local pack=(cpack -G TGZ)
  ! command -v dpkg-shlibdeps >/dev/null || pack=(fakeroot cpack -G 'TGZ;DEB')
  (
    umask 022
    cd "$tree"
    quietly cmake --preset install "$@"
    cmake --build --preset install
    cd build/install
    quietly "${pack[@]}" -B "$PWD/packed"
  )
  find "$tree/build/install/packed" -maxdepth 1 -type f -exec cp {} "$packages" \;
}
