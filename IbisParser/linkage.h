/* Declarations shared by the headers of the parser library, which are C11 and C++ alike. */
#ifndef IBISPARSER_LINKAGE_H
#define IBISPARSER_LINKAGE_H

#ifdef __cplusplus
#define IBIS_BEGIN_DECLS extern "C" {
#define IBIS_END_DECLS }
#else
#define IBIS_BEGIN_DECLS
#define IBIS_END_DECLS
#endif

#define IBIS_PRINTF_LIKE(text, first) __attribute__((format(printf, text, first)))
#define IBIS_CHECK_RESULT __attribute__((warn_unused_result))

#endif
