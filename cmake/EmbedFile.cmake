# Run by quarn_embed at build time: writes INPUT as the source OUTPUT, whose names begin with SYMBOL.
cmake_minimum_required(VERSION 3.23)
file(READ ${INPUT} bytes HEX)
string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
# One line would be longer than some compilers read.
string(REPEAT "0x..," 16 row)
string(REGEX REPLACE "(${row})" "\\1\n" bytes "${bytes}")
file(SHA256 ${INPUT} hash)
string(REGEX REPLACE "(..)" "0x\\1," hash "${hash}")
# The 0 at the end is not counted; an empty file is an array all the same.
file(WRITE ${OUTPUT}.new "extern const unsigned char ${SYMBOL}[];
extern const unsigned char ${SYMBOL}_SHA256[32];
extern const long long ${SYMBOL}_SIZE;
const unsigned char ${SYMBOL}[] = {
${bytes}0};
const unsigned char ${SYMBOL}_SHA256[32] = {${hash}};
const long long ${SYMBOL}_SIZE = sizeof(${SYMBOL}) - 1;
")
file(RENAME ${OUTPUT}.new ${OUTPUT})
