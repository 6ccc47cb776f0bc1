# Sourced by the checks of packages.

packages=$PWD/build/packages

# The archive of the sources is the only one that says which commit it is of.
archived_commit() {
  local archive
  archive=$(find "$packages" -name "quillmark-mcp-*.tar.gz" ! -name "quillmark-mcp-*-*" 2>/dev/null)
  [ -z "$archive" ] || gzip -dc "$archive" | git get-tar-commit-id
}

# Makes the packages of the last commit, unless an earlier check has made them.
make_packages_once() {
  [ -f "$packages/SHA256SUMS" ] && [ "$(archived_commit)" = "$(git rev-parse HEAD)" ] ||
    scripts/package
}
