// Fontconfig keeps what it has read for the life of the process and loses its pointers to it at exit.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}
