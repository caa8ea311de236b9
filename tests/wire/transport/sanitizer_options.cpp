// Options of the sanitizers, for the programs that this is linked into; plain builds do not ask for them. A larger
// allocation fails like one for which there is no memory.
#ifndef MAX_ALLOCATION_MB
#define MAX_ALLOCATION_MB "192"
#endif

extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=" MAX_ALLOCATION_MB;
}

extern "C" const char* __tsan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=" MAX_ALLOCATION_MB;
}
