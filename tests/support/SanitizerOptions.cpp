// What a program built with sanitizers starts with, whoever starts it and with whatever environment. TUPPI_TESTS_FOLDER
// is where the lists stand of what is not ours.

extern "C" {

// What stays loaded has its name in a report, and can be told from ours by it.
int dlclose(void *library);
int dlclose(void * /*library*/)
{
    return 0;
}

// Qt's web engine frees some of its own objects under another size than they were made with.
const char *__asan_default_options();
const char *__asan_default_options()
{
    return "new_delete_type_mismatch=0";
}

const char *__tsan_default_options();
const char *__tsan_default_options()
{
    return "suppressions=" TUPPI_TESTS_FOLDER "/tsan.supp:die_after_fork=0";
}

const char *__lsan_default_options();
const char *__lsan_default_options()
{
    return "suppressions=" TUPPI_TESTS_FOLDER "/lsan.supp:print_suppressions=0";
}

const char *__ubsan_default_options();
const char *__ubsan_default_options()
{
    return "print_stacktrace=1";
}

} // extern "C"
