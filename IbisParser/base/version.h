// The IBIS versions: one row for each. What depends on the version of a file asks here.
#ifndef IBISPARSER_BASE_VERSION_H
#define IBISPARSER_BASE_VERSION_H

#include <span>

// Limits that grew with the versions.
enum VersionLimit {
    LIMIT_FILE_NAME,  // characters of [File Name]
    LIMIT_SIGNAL,     // characters of the names of signals, models and model selectors
    LIMIT_SUBMODEL,
    LIMIT_CURVE_POINTS,
    LIMIT_WAVE_POINTS,
    LIMIT_COUNT
};

struct VersionRow {
    const char* text;  // as a file declares it
    // Versions of one class are read alike: geFileVersion. A keyword or a rule counts from a class
    // on, so later versions have higher ones: 51 for 5.1, 60 for 6.0.
    int versionClass;
    int lineMax;  // characters of a line
    unsigned limits[LIMIT_COUNT];
};

// The row of a version, or null.
const VersionRow* VERSION_Find(const char* text);
// The newest version of a class; lower classes are read as the first one.
const VersionRow* VERSION_OfClass(int versionClass);
const VersionRow* VERSION_Latest();
// All of them, oldest first.
std::span<const VersionRow> VERSION_Rows();
// The version that brought what counts from a class on, as messages name it.
const char* VERSION_Since(int versionClass);
// The class of a declared version, whatever follows it: that of its row, else of the last row with
// its first digit. 1 for "1...", which has no row and is not read; 0 for what is no version.
int VERSION_Probe(const char* text);
// A version of this class can be read.
bool VERSION_IsRead(int versionClass);

// The row of the file being read.
const VersionRow* VERSION_Current();

#endif
