// What the reader knows of keywords beside the public tables: a row for each, of every version.
#ifndef IBISPARSER_BASE_KEYWORD_H
#define IBISPARSER_BASE_KEYWORD_H

#include <span>

#include "IbisParser/keyword.h"

enum { KEYWORD_MAX = 117 /* characters between brackets */ };

// The kinds of record that a document holds; each keyword belongs to one.
enum KeywordSection {
    SECTION_NONE,
    SECTION_HEADER,
    SECTION_COMPONENT,
    SECTION_CIRCUIT,
    SECTION_MODEL,
    SECTION_PACKAGE,
    SECTION_BOARD,
    SECTION_SELECTOR,
    SECTION_SUBMODEL,
    SECTION_TEST_DATA,
    SECTION_TEST_LOAD
};

// Of several keywords with one name, those with a place rule are meant where it holds, the other
// one elsewhere.
enum KeywordRule : unsigned {
    RULE_TEXT = 1,           // an indented bracket under it is text
    RULE_HEAD = 2,           // it stands in the head of its record
    RULE_IN_HEAD = 4,        // place: the head of a record of its section
    RULE_IN_BOARD_FILE = 8,  // place: a board file
    RULE_IN_SUBMODEL = 16,   // place: a submodel
    RULE_PLACES = RULE_IN_HEAD | RULE_IN_BOARD_FILE | RULE_IN_SUBMODEL
};

struct KeywordRow {
    KeywordCode code;
    const char* name;     // as in the public tables
    const char* display;  // as people write it, without brackets
    int since;            // version class
    KeywordSection section;
    unsigned rules;
};

std::span<const KeywordRow> KEYWORD_Rows();
// The row of a code, or null.
const KeywordRow* KEYWORD_Row(int code);
// Both take what is no code, too: it has no section and no rules.
KeywordSection KEYWORD_Section(int code);
bool KEYWORD_HasRule(int code, KeywordRule rule);

#endif
