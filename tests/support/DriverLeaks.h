#pragma once

// To be included by one source file of a program in which exceptions pass through Qt's driver.

#ifdef __SANITIZE_ADDRESS__
// Qt's driver leaks the names of a statement's placeholders, and the statements that begin and end
// a transaction, when SqliteWatch::throwOn() throws through it. The suppressions have whole stacks,
// so that only these leaks are ignored.
extern "C" const char *__asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:QSqlResultPrivate::namedToPositionalBinding\n"
           "leak:Internal::NamedDatabase::begin\n"
           "leak:Internal::NamedDatabase::commit\n"
           "leak:Internal::NamedDatabase::rollback\n";
}
#endif
