// GLib's libraries are built without the thread sanitizer and lock with primitives that it does not know. It
// would take memory that they pass between their own threads for races of ours. What our code does inside
// their callbacks stays watched: only memory that the library itself copies or frees is left out.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "called_from_lib:libgobject-2.0.so.0\n";
}
