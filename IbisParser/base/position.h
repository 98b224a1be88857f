// Where the reader is: file, directory, line, version class, keyword, comment character, flags. The
// reader and the sections move it; the log and the scanners ask. What programs may see of it is
// declared in parse.h and cmn.h.
#ifndef IBISPARSER_BASE_POSITION_H
#define IBISPARSER_BASE_POSITION_H

#include "IbisParser/base/place.h"
#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"

extern bool gbTabFound;  // tabs are reported once for each file

// Keeps the position while another file is read, and puts it back at its end, so that the messages
// after it name the outer file again. What the checks of the outer file look at is out of sight.
class PositionKeeper {
public:
    PositionKeeper();
    ~PositionKeeper();
    PositionKeeper(const PositionKeeper&) = delete;
    PositionKeeper& operator=(const PositionKeeper&) = delete;

private:
    unsigned long m_LineNum;
    char m_FileName[CMN_PATH_MAX + 1];
    char m_FilePath[CMN_PATH_MAX + 1];
    char m_Comment;
    KeywordCode m_CurrentKeyword;
    FileType m_FileType;
    int m_FileVersion;
    int m_IbisVerFound;
    int m_EndFound;
    int m_InSubModel;
    int m_Continue;
    bool m_TabFound;
    PlaceElsewhere m_Place;
};

// Begins a file of the type: its first line comes next.
void POSITION_Reset(FileType fileType);

#endif
