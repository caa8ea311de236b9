# Writes INPUT, a JSON file, into OUTPUT as a C++ text.
file(READ ${INPUT} text)
file(WRITE ${OUTPUT} "// Made from lineup.json at build time.\n"
    "#include \"television/line_up/default_line_up.h\"\n\n"
    "const char* const hbbtv::sim::kDefaultLineUp = R\"line-up(" "${text}" ")line-up\";\n")
