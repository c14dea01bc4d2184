// An array too large for the test is refused as if the memory had ended; the address sanitizer asks
// for its options here.
extern "C" char const* __asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=64:detect_stack_use_after_return=1";
}
