# Sourced by scripts/package: the packages for Macs. $tree has the sources, with the program linked
# by scripts/macos; $packages gets the packages of $version.

macos_root() {
  echo "$tree/build/macos/root/usr/local"
}

# The manifest lists the tools that the program for this system announces. Packed by zip, with the
# commit's time: the bundle's own tool would write the time of day.
bundle() {  # TEMPLATES PROGRAM FOR THIS SYSTEM
  local content=$tree/build/bundle tool=$tree/packaging/node_modules/.bin/mcpb
  local file=$packages/quillmark-mcp-$version.mcpb
  mkdir -p "$content/server"
  install -m 755 "$(macos_root)/bin/quillmark-mcp" "$content/server/quillmark-mcp"
  node "$tree/packaging/bundle/manifest.mjs" "$1/bundle/manifest.json" "$2" \
    >"$content/manifest.json"
  quietly "$tool" validate "$content/manifest.json"
  (cd "$content" && export TZ=UTC && touch -t "$commit_time" manifest.json server/quillmark-mcp &&
    zip -q -X -9 "$file" manifest.json server/quillmark-mcp)
  quietly "$tool" unpack "$file" "$tree/build/unpacked"
  diff -r "$content" "$tree/build/unpacked"
}

registry_entry() {  # TEMPLATES
  node "$tree/packaging/registry/server.mjs" "$1/registry/server.json" \
    "$packages/quillmark-mcp-$version.mcpb" >"$packages/server.json"
}
