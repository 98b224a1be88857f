// How the texts of messages are compared with arguments. What must not compile is in
// raise_misuse.cpp.
#include "IbisParser/base/raise.h"

using enum ErrArg;

static_assert(ERRLOG_Takes("no argument", {}));
static_assert(ERRLOG_Takes("%s has %d%% (%c)", {Text, Int, Int}));
static_assert(ERRLOG_Takes("%-5.2g%08.3e", {Double, Double}));
static_assert(ERRLOG_Takes("%lu", {Long}) && !ERRLOG_Takes("%lu", {Int}));
static_assert(!ERRLOG_Takes("%s", {}) && !ERRLOG_Takes("", {Text}));
static_assert(!ERRLOG_Takes("%s %d", {Int, Text}));
static_assert(!ERRLOG_Takes("%*d", {Int, Int}) && !ERRLOG_Takes("%", {Int}));
static_assert(!ERRLOG_Takes("%d", {Other}));

static_assert(ERRLOG_ArgOf<char[8]>() == Text && ERRLOG_ArgOf<const char*>() == Text);
static_assert(ERRLOG_ArgOf<bool>() == Int && ERRLOG_ArgOf<ErrSeverity>() == Int);
static_assert(ERRLOG_ArgOf<std::size_t>() == Long && ERRLOG_ArgOf<float>() == Double);
static_assert(ERRLOG_ArgOf<int*>() == Other && ERRLOG_ArgOf<std::nullptr_t>() == Other);
