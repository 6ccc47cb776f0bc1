# Sourced by the checks of packages.

packages=$PWD/build/packages

archived_commit() {
  gzip -dc "$packages"/quillmark-mcp-*[0-9].tar.gz 2>/dev/null | git get-tar-commit-id 2>/dev/null
}

# Makes the packages of the last commit, unless an earlier check has made them.
make_packages_once() {
  [ -f "$packages/SHA256SUMS" ] && [ "$(archived_commit)" = "$(git rev-parse HEAD)" ] ||
    scripts/package
}
