# Sourced by the checks of packages.

packages=$PWD/build/packages

source_archive() {
  find "$packages" -name "quillmark-mcp-*.tar.gz" ! -name "quillmark-mcp-*-*"
}

# The archive of the sources is the only one that says which commit it is of.
archived_commit() {
  gzip -dc "$(source_archive)" | git get-tar-commit-id
}

# Makes the packages of the last commit, unless they exist and were made without settings.
make_packages_once() {
  [ -f "$packages/SHA256SUMS" ] && [ "$(archived_commit)" = "$(git rev-parse HEAD)" ] &&
    [ ! -s build/from-archive/build/settings ] || scripts/package
}
