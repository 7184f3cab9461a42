# Sourced by scripts/demo and others: makes the folder that the service serves, with all archives.

make_world() {
    cp -R demo/data "$world"
    mkdir "$world/files"
    zip_folder "$world/files/java.zip" "$made" runtime
    make_client demo 1500 normal
    make_client demo-long 60000 normal
    make_client demo-crash 1000 crash
    zip_folder "$world/files/library.zip" "$made" demo-library.jar
    zip_folder "$world/files/greeter.zip" "$made" demo-greeter.jar
    make_resource_pack
    make_shader_pack
}

# zip_folder <archive> <folder> <name...>: with executable bits.
zip_folder() {
    local archive=$1 folder=$2
    shift 2
    (cd "$folder" && cmake -E tar cf "$archive" --format=zip "$@")
}

# A client lies where it is unpacked to; its argument template says how to start it.
make_client() { # version, milliseconds of play, ending
    local folder=$work/made/$1
    local version=$folder/.minecraft/versions/oriel$1
    mkdir -p "$version"
    cp "$made/demo-game.jar" "$version"
    sed "s/@VERSION@/$1/; s/@PLAY_MILLISECONDS@/$2/; s/@ENDING@/$3/" demo/client.bat.in \
        >"$version/$1.bat"
    zip_folder "$world/files/$1.zip" "$folder" .minecraft
}

# The game reads a pack packed, so the archive that is unpacked holds an archive.
make_resource_pack() {
    local folder=$work/made/pack
    mkdir -p "$folder/assets"
    echo '{"pack": {"pack_format": 1, "description": "Noise for the demo"}}' >"$folder/pack.mcmeta"
    head -c 4000000 /dev/urandom >"$folder/assets/noise.bin"
    zip_folder "$work/made/demo-pack.zip" "$folder" pack.mcmeta assets
    zip_folder "$world/files/pack.zip" "$work/made" demo-pack.zip
}

make_shader_pack() {
    local folder=$work/made/shaders
    mkdir -p "$folder/shaders"
    echo 'void main() { gl_FragColor = vec4(0.0, 0.5, 1.0, 1.0); }' >"$folder/shaders/final.fsh"
    zip_folder "$work/made/demo-shaders.zip" "$folder" shaders
    zip_folder "$world/files/shaders.zip" "$work/made" demo-shaders.zip
}

# world_bytes <archive...>: what it takes to download them.
world_bytes() {
    (cd "$world/files" && stat --format=%s "${@/%/.zip}") | awk '{ sum += $1 } END { print sum }'
}
