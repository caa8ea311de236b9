// Options of the sanitizers, for the programs that this is linked into; plain builds do not ask for them. More than
// 24 MiB is too much for one allocation, which then fails like one for which there is no memory.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=24";
}

extern "C" const char* __tsan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=24";
}
