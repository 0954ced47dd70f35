# Writes the bytes of FILE as a constant array named SYMBOL into the C++ source OUTPUT.
file(READ ${FILE} hex HEX)
string(LENGTH "${hex}" digits)
math(EXPR size "${digits} / 2")
get_filename_component(name ${FILE} NAME)
# Bytes are signed, so values from 0x80 up need the cast; a literal suffix or a negative number would be longer.
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "char(0x\\1)," bytes "${hex}")
string(REGEX REPLACE "((char\\(0x..\\),){16})" "\\1\n" bytes "${bytes}")
string(REPLACE "char(" "B(" bytes "${bytes}")
file(WRITE ${OUTPUT}
"// Generated from ${name}; not to be edited.
extern const signed char ${SYMBOL}[];
extern const unsigned int ${SYMBOL}_size;
static constexpr signed char B(int byte) { return static_cast<signed char>(byte); }
constexpr signed char ${SYMBOL}[] = {
${bytes}};
constexpr unsigned int ${SYMBOL}_size = ${size};
")
