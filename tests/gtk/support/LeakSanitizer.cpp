// Fontconfig keeps what it has read for the life of the process and loses its pointers to it at exit; the web
// engine's run-time does so with the locks of its threads.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\nleak:libjavascriptcoregtk\n";
}
