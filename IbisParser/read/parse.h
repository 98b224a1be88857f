// What modules need that read a further file in the middle of a run.
#ifndef IBISPARSER_READ_PARSE_H
#define IBISPARSER_READ_PARSE_H

#include <cstdio>

#include "IbisParser/parse.h"

// The reader's position: file, directory, line, file type, version class, keyword.
struct ParseState {
    unsigned long lineNum;
    char fileName[CMN_PATH_MAX + 1];
    char filePath[CMN_PATH_MAX + 1];
    char comment;
    KeywordCode currentKeyword;
    FileType fileType;
    int fileVersion;
    int ibisVerFound;
    int endFound;
    int inSubModel;
    int tabFound;
    int continued;
};

// Around a nested PARSE, so that the messages after it name the outer file again.
void PARSE_SaveState(ParseState* state);
void PARSE_RestoreState(const ParseState* state);

// Reads an AMI parameter file, whatever its extension, into gsBuffer and closes it. 1 done, 0 when
// memory ran out.
int PARSE_ReadParameters(const char* name, std::FILE* file);

#endif
