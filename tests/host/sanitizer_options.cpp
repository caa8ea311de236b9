// Options of the sanitizers for this program; plain builds do not ask for them.

// What a detached thread holds while it runs: clang's leak checker does not find it on the thread's stack.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:android::hardware::host::StartThread\n";
}

extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}
