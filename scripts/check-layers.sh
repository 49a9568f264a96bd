#!/usr/bin/env bash
# Fails when the code breaks the layering:
#   - a file under src/<layer>/ includes a header of a higher layer;
#   - a public header (include/karvelui/) includes a private or third-party
#     header, or a header of a higher layer than its own;
#   - a file outside src/platform and src/render/gpu/gl includes SDL or GL;
#   - a library file outside src/platform includes an OS header (POSIX);
#   - a program under apps/ includes a private header of the library.
# A public header's layer is the folder of its source file under src/, or
# the table below for headers without one.
set -uo pipefail
cd "$(dirname "$0")/.."

LAYERS=(base platform foundation raw render skin animation framework thumbnails controls)
declare -A RANK
for i in "${!LAYERS[@]}"; do RANK[${LAYERS[$i]}]=$i; done

declare -A HEADER_ONLY=(
  [Base.h]=base [Collections.h]=base [Export.h]=base [FastDelegate.h]=base
  [Geometry.h]=base [Types.h]=base [WinConstants.h]=base
  [WindowTypes.h]=platform
  [D3DTypes.h]=render [RefPtr.h]=render
  [SkinConfig.h]=skin [SkinTypes.h]=skin
)

failures=0
fail() { echo "layers: $*"; failures=$((failures + 1)); }

# Every source file's layer by its name, for the public headers.
declare -A SOURCE_LAYER
while IFS= read -r source; do
  rest=${source#src/}
  SOURCE_LAYER[$(basename "${source%.cpp}").h]=${rest%%/*}
done < <(find src -name '*.cpp')

# The layer of public header <karvelui/NAME>.
public_layer() {
  local name=$1
  if [ -n "${HEADER_ONLY[$name]:-}" ]; then echo "${HEADER_ONLY[$name]}"; else echo "${SOURCE_LAYER[$name]:-}"; fi
}

# The layer of the file at PATH (under src/ or include/karvelui/).
file_layer() {
  case $1 in
    src/*) local rest=${1#src/}; echo "${rest%%/*}" ;;
    include/karvelui/*) public_layer "$(basename "$1")" ;;
  esac
}

# The layer an include line names, or nothing for the standard library and
# third-party headers.
included_layer() {
  case $1 in
    '<karvelui/'*) local name=${1#<karvelui/}; public_layer "${name%>}" ;;
    '"'*/*) local rest=${1#\"}; echo "${rest%%/*}" ;;
  esac
}

is_os_header() {
  [[ $1 =~ ^\<(unistd|fcntl|dlfcn|pthread|dirent|poll|signal|sys/[a-z_]+)\.h\>$ ]]
}

is_sdl_or_gl() {
  case $1 in
    '<SDL'*|'"SDL'*|'<GL/'*|'<GLES'*|'<EGL/'*|'<epoxy/'*|'<KHR/'*) return 0 ;;
  esac
  return 1
}

for header in include/karvelui/*.h; do
  [ -n "$(public_layer "$(basename "$header")")" ] ||
    fail "$header: no layer (add its source under src/<layer>/ or a HEADER_ONLY entry)"
done

while IFS= read -r file; do
  layer=$(file_layer "$file")
  [ -n "$layer" ] && [ -z "${RANK[$layer]+x}" ] && { fail "$file: unknown layer '$layer'"; continue; }
  while IFS=: read -r line include; do
    [[ $include =~ include[[:space:]]*([<\"][^>\"]*[>\"]) ]] || continue
    include=${BASH_REMATCH[1]}
    if is_sdl_or_gl "$include"; then
      case $file in
        src/platform/*|src/render/gpu/gl/*) ;;
        *) fail "$file:$line includes $include outside the platform and GL backend folders" ;;
      esac
      continue
    fi
    if is_os_header "$include"; then
      case $file in
        src/platform/*|apps/*) ;;
        *) fail "$file:$line includes OS header $include outside the platform folder" ;;
      esac
      continue
    fi
    case $file in
      include/*)
        case $include in
          '<karvelui/'*) ;;
          '"'*) fail "$file:$line: public header includes private header $include" ; continue ;;
          '<'*'.h>'|'<'*/*'>') fail "$file:$line: public header includes third-party header $include"; continue ;;
        esac ;;
      apps/*)
        case $include in
          '"'*/*) [ -f "$(dirname "$file")/${include//\"/}" ] ||
                    fail "$file:$line: program includes private library header $include" ;;
        esac
        continue ;;
    esac
    target=$(included_layer "$include")
    [ -z "$target" ] && continue
    [ -z "${RANK[$target]+x}" ] && continue  # a test or tool folder, not a layer
    if [ "${RANK[$target]}" -gt "${RANK[$layer]}" ]; then
      fail "$file:$line: layer '$layer' includes $include of higher layer '$target'"
    fi
  done < <(grep -nE '^[[:space:]]*#[[:space:]]*include' "$file")
done < <(find src include apps -name '*.h' -o -name '*.cpp' | sort)

if [ "$failures" -gt 0 ]; then
  echo "layers: $failures violation(s); order, lowest first: ${LAYERS[*]}"
  exit 1
fi
echo "layers: clean (${LAYERS[*]})"
