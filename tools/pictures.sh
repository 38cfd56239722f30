#!/usr/bin/env bash
# Takes the pictures of the documentation with the desktop program, without a display.
#   tools/pictures.sh                             those of README.md and docs/, in docs/pictures
#   tools/pictures.sh FOLDER [LANGUAGE [THEME [SCALE]]]
#       into a folder: LANGUAGE English, German or Russian, THEME light or dark, SCALE such as 1.5
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh

need g++ cmake ninja-build libcli11-dev qt6-base-dev libqscintilla2-qt6-dev fonts-dejavu-core \
    binutils-mingw-w64-i686 pkg-config libunicorn-dev libcapstone-dev
folder=${1:-docs/pictures} language=${2:-English} theme=${3:-light} scale=${4:-1}
build run release -DTARN_TESTS=OFF -- --target tarn-workbench
mkdir -p "$folder"
# The script stands one folder below the project, as docs/pictures.tarn does.
{
    printf 'registry ExpLocaleDir %s\nstart\npump\n' "$PWD/build/run/apps/tarn"
    printf 'click "TarnExperts|Settings|Language|%s"\npump\n' "$language"
    cat docs/pictures.tarn
} >build/pictures.tarn
QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=$scale QT_LOGGING_RULES='*=false' \
    build/run/apps/tarn/tarn-workbench --theme "$theme" --script build/pictures.tarn --screenshots "$folder"
say "the pictures are in $folder"
