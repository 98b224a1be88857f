// Matrices of package models: storage in proportion to the text, the rules of their rows, and the
// physical sense of their values.
#include "IbisParser/mtx.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/keyword.h"
#include "IbisParser/krng.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/mtx";

// Larger matrices are not tested for positive definiteness, whose cost grows with the third power.
enum { MTX_DEFINITE_MAX = 400 };

// What is being read. A sparse element may be given in the row of either of its pins: `waiting`
// chains the elements given in earlier rows to their other pin, and `seen` marks the partners that
// the row has already. Most files give the upper half only, so the chain of a row is walked not
// before the row names a pin whose own row is past.
struct MtxReading {
    int row;          // -1: no row is open, or its data are skipped
    int skipRow;      // data of a row that was refused
    const char* pin;  // of the row
    int limit;        // elements that the row may have
    int tooMany;      // reported for this row
    int isMarked;     // sparse: the chain of the row was walked
    int diagonal;     // sparse: given in this row
    int* seen;        // n marks: row + 1
    int* waiting;     // n chains: element + 1
    int* chain;       // for each element the next one of its chain + 1
};

// clang-format off
// Places in MtxKind from 1.
static const char* const s_kindWords[] = {"Banded_matrix", "Sparse_matrix", "Full_matrix", nullptr};

// Diagonal elements above `usual` (ohm, henry, farad) are most likely a wrong scale letter.
static const struct MatrixKeyword { int code; const char* name; double usual; const char* sign; }
s_keywords[] = {
    { KEY_RESISTANCE_MATRIX,  "Resistance Matrix",  100,  "not be negative" },
    { KEY_INDUCTANCE_MATRIX,  "Inductance Matrix",  1e-6, "be positive" },
    { KEY_CAPACITANCE_MATRIX, "Capacitance Matrix", 1e-9, "be positive" },
};
// clang-format on

static const MatrixKeyword& s_keyword(int code)
{
    const auto* row = std::ranges::find(s_keywords, code, &MatrixKeyword::code);
    CMN_ASSERT(row != std::end(s_keywords));
    return *row;
}

static const char* s_name(const Mtx* matrix)
{
    return s_keyword(matrix->code).name;
}

static Mtx** s_slot(PkgMdl* package, int code)
{
    if (code == KEY_RESISTANCE_MATRIX) return &package->resistance;
    return code == KEY_INDUCTANCE_MATRIX ? &package->inductance : &package->capacitance;
}

// Only for messages: it walks the list.
static const char* s_pinName(const PkgMdl* package, int index)
{
    const PkgPin* pin = package->pins;
    while (pin != nullptr && pin->index != index)
        pin = pin->next;
    return pin != nullptr ? pin->name : "";
}

template <typename T>
static int s_allocate(T** out, std::size_t count)
{
    void* block = nullptr;
    if (!CMN_malloc(&block, count * sizeof(T))) {
        ERRLOG_BugNew(2601, s_Module, __LINE__);
        return 0;
    }
    *out = static_cast<T*>(block);
    return 1;
}

template <typename T>
static int s_grow(T** block, std::size_t count)
{
    void* grown = *block;
    if (!(grown == nullptr ? CMN_malloc(&grown, count * sizeof(T))
                           : CMN_realloc(&grown, count * sizeof(T)))) {
        ERRLOG_BugNew(2601, s_Module, __LINE__);
        return 0;
    }
    *block = static_cast<T*>(grown);
    return 1;
}

template <typename T>
static void s_release(T** block)
{
    if (*block == nullptr) return;
    void* p = *block;
    CMN_freeSetNull(&p);
    *block = nullptr;
}

static void s_freeReading(Mtx* matrix)
{
    MtxReading* reading = matrix->reading;
    if (reading == nullptr) return;
    s_release(&reading->seen);
    s_release(&reading->waiting);
    s_release(&reading->chain);
    s_release(&matrix->reading);
}

// Room for the pins of the package; 0 when memory ran out.
static int s_begin(Mtx* matrix, int code, int n)
{
    matrix->code = code;
    matrix->n = n;
    const std::size_t count = static_cast<std::size_t>(n);
    if (!s_allocate(&matrix->rows, count) || !s_allocate(&matrix->reading, 1)) return 0;
    matrix->reading->row = -1;
    if (matrix->kind != MTX_SPARSE) return 1;
    return s_allocate(&matrix->reading->seen, count) &&
           s_allocate(&matrix->reading->waiting, count);
}

// One number of a row; 0 when it is none.
static int s_readValue(const Mtx* matrix, const char* text, double* value)
{
    const int result = CMN_Get_Value(text, value);
    if (result == 0 || !std::isfinite(*value)) {
        ERRLOG_LineErrorNew(2616, matrix->reading->pin, text);
        *value = 0;
        return 0;
    }
    if (result == 2) ERRLOG_LineWarnNew(1910, s_name(matrix), matrix->reading->pin, text);
    return 1;
}

static int s_appendValue(MtxRow* row, int limit, double value)
{
    if (row->count == row->capacity) {
        const int capacity = std::min(limit, std::max(8, 2 * row->capacity));
        if (!s_grow(&row->values, static_cast<std::size_t>(capacity))) return 0;
        row->capacity = capacity;
    }
    row->values[row->count++] = value;
    return 1;
}

static int s_appendCell(Mtx* matrix, int partner, double value)
{
    MtxReading* reading = matrix->reading;
    if (matrix->cellCount == matrix->cellCapacity) {
        const std::size_t capacity = std::max<std::size_t>(64, 2 * matrix->cellCapacity);
        if (!s_grow(&matrix->cells, capacity) || !s_grow(&reading->chain, capacity)) return 0;
        matrix->cellCapacity = capacity;
    }
    const std::size_t cell = matrix->cellCount++;
    const int row = reading->row;
    matrix->cells[cell] = {std::min(row, partner), std::max(row, partner), value};
    reading->chain[cell] = reading->waiting[partner];
    // Elements of one matrix come from as many lines of text, so that they can be counted in an
    // int.
    reading->waiting[partner] = static_cast<int>(matrix->cellCount);
    reading->seen[partner] = row + 1;
    return 1;
}

static void s_endRow(Mtx* matrix)
{
    MtxReading* reading = matrix->reading;
    if (reading->row >= 0) {
        const PlaceScope at(reading);
        const MtxRow* row = &matrix->rows[reading->row];
        if (matrix->kind == MTX_SPARSE) {
            if (!reading->diagonal) ERRLOG_LineErrorNew(2620, reading->pin, s_name(matrix));
        } else if (row->count < reading->limit) {
            ERRLOG_LineErrorNew(2615, reading->pin, s_name(matrix), row->count, reading->limit);
        }
    }
    reading->row = -1;
    reading->skipRow = 0;
}

// Marks what earlier rows gave for the pin of this row.
static void s_markGiven(Mtx* matrix)
{
    MtxReading* reading = matrix->reading;
    reading->isMarked = 1;
    const int row = reading->row;
    for (int link = reading->waiting[row]; link != 0; link = reading->chain[link - 1]) {
        const MtxCell* cell = &matrix->cells[link - 1];
        reading->seen[cell->row == row ? cell->col : cell->row] = row + 1;
    }
}

static int s_sparseLine(PkgMdl* package, Mtx* matrix, char* line)
{
    MtxReading* reading = matrix->reading;
    char* pinText = TOKEN_Next(&line);
    char* valueText = TOKEN_Next(&line);
    const int items = (pinText != nullptr) + (valueText != nullptr) + TOKEN_Count(line);
    if (items != 2) {
        ERRLOG_LineErrorNew(2617, items);
        return 0;
    }
    const PkgPin* pin = PKGMDL_FindPin(package, pinText);
    if (pin == nullptr || pin->index >= matrix->n) {
        ERRLOG_LineErrorNew(2618, pinText);
        return 0;
    }
    if (pin->index == reading->row)
        reading->diagonal = 1;
    else if (!reading->isMarked && matrix->rows[pin->index].given)
        s_markGiven(matrix);
    if (reading->seen[pin->index] == reading->row + 1) {
        ERRLOG_LineErrorNew(2619, reading->pin, pin->name, s_name(matrix));
        return 0;
    }
    double value = 0;
    const int good = s_readValue(matrix, valueText, &value);
    return s_appendCell(matrix, pin->index, value) && good;
}

static int s_denseLine(Mtx* matrix, char* line)
{
    MtxReading* reading = matrix->reading;
    MtxRow* row = &matrix->rows[reading->row];
    int good = 1;
    for (char* text = TOKEN_Next(&line); text != nullptr; text = TOKEN_Next(&line)) {
        if (row->count == reading->limit) {
            if (!reading->tooMany)
                ERRLOG_LineErrorNew(2614, reading->pin, s_name(matrix), reading->limit);
            reading->tooMany = 1;
            return 0;
        }
        double value = 0;
        good &= s_readValue(matrix, text, &value);
        if (!s_appendValue(row, reading->limit, value)) return 0;
    }
    return good;
}

static bool s_before(const MtxCell& a, const MtxCell& b)
{
    return a.row != b.row ? a.row < b.row : a.col < b.col;
}

template <typename Visit>
static void s_eachElement(const Mtx* matrix, Visit visit)
{
    if (matrix->kind == MTX_SPARSE) {
        for (std::size_t k = 0; k < matrix->cellCount; ++k)
            visit(matrix->cells[k].row, matrix->cells[k].col, matrix->cells[k].value);
        return;
    }
    for (int i = 0; i < matrix->n; ++i) {
        const MtxRow& row = matrix->rows[i];
        for (int k = 0; k < row.count; ++k)
            visit(i, i + k, row.values[k]);
    }
}

// The first element that breaks a rule.
struct Offence {
    int row = -1;
    int col = -1;
    double value = 0;

    bool Found() const { return row >= 0; }

    void Note(bool breaks, int i, int j, double v)
    {
        if (!breaks || Found()) return;
        row = i;
        col = j;
        value = v;
    }
};

static void s_checkDiagonal(const Mtx* matrix, const PkgMdl* package)
{
    const MatrixKeyword& keyword = s_keyword(matrix->code);
    const bool zeroAllowed = matrix->code == KEY_RESISTANCE_MATRIX;
    Offence sign;
    Offence unusual;
    s_eachElement(matrix, [&](int i, int j, double v) {
        if (i != j) return;
        sign.Note(v < 0 || (v == 0 && !zeroAllowed), i, j, v);
        unusual.Note(SEC_Exceeds(v, keyword.usual), i, j, v);
    });
    if (sign.Found())
        ERRLOG_LineWarnNew(2622, keyword.name, s_pinName(package, sign.row), sign.value,
                           keyword.sign);
    if (unusual.Found())
        ERRLOG_LineWarnNew(2630, keyword.name, s_pinName(package, unusual.row), unusual.value);
}

static void s_checkCoupling(const Mtx* matrix, const PkgMdl* package, const double* diagonal)
{
    const bool resistance = matrix->code == KEY_RESISTANCE_MATRIX;
    const bool capacitance = matrix->code == KEY_CAPACITANCE_MATRIX;
    Offence strong;
    Offence positive;
    s_eachElement(matrix, [&](int i, int j, double v) {
        if (i == j) return;
        const double a = diagonal[i];
        const double b = diagonal[j];
        const double size = std::fabs(v);
        if (resistance)
            strong.Note(a >= 0 && b >= 0 && size > std::min(a, b), i, j, v);
        else
            strong.Note(a > 0 && b > 0 && size >= std::sqrt(a) * std::sqrt(b), i, j, v);
        positive.Note(capacitance && v > 0, i, j, v);
    });
    if (strong.Found()) {
        const char* first = s_pinName(package, strong.row);
        const char* second = s_pinName(package, strong.col);
        if (resistance)
            ERRLOG_LineWarnNew(2627, first, second, strong.value);
        else
            ERRLOG_LineWarnNew(2623, s_name(matrix), first, second, strong.value);
    }
    if (positive.Found())
        ERRLOG_LineWarnNew(2624, s_pinName(package, positive.row), s_pinName(package, positive.col),
                           positive.value);
}

// The nodal form: a row sums to the capacitance to ground.
static void s_checkRowSums(const Mtx* matrix, const PkgMdl* package, const double* diagonal)
{
    double* sum = nullptr;
    if (!s_allocate(&sum, static_cast<std::size_t>(matrix->n))) return;
    s_eachElement(matrix, [sum](int i, int j, double v) {
        sum[i] += v;
        if (i != j) sum[j] += v;
    });
    Offence negative;
    for (int i = 0; i < matrix->n; ++i)
        negative.Note(diagonal[i] > 0 && sum[i] < -1e-6 * diagonal[i], i, i, sum[i]);
    if (negative.Found()) ERRLOG_LineWarnNew(2625, s_pinName(package, negative.row));
    s_release(&sum);
}

// Cholesky's factorisation of the n by n matrix, whose upper half is given, in place.
static bool s_isPositiveDefinite(double* a, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i) {
        double* row = a + i * n;
        if (!(row[i] > 0)) return false;
        const double root = std::sqrt(row[i]);
        for (std::size_t j = i; j < n; ++j)
            row[j] /= root;
        for (std::size_t k = i + 1; k < n; ++k) {
            const double factor = row[k];
            if (factor == 0) continue;
            for (std::size_t j = k; j < n; ++j)
                a[k * n + j] -= factor * row[j];
        }
    }
    return true;
}

// A package is passive: no current pattern may give energy. Resistances may be zero, which a small
// addition to the diagonal turns into positive.
static void s_checkDefinite(const Mtx* matrix, const PkgMdl* package, const double* diagonal)
{
    if (matrix->n > MTX_DEFINITE_MAX) return;
    const std::size_t n = static_cast<std::size_t>(matrix->n);
    double* a = nullptr;
    if (!s_allocate(&a, n * n)) return;
    s_eachElement(matrix, [a, n](int i, int j, double v) {
        a[static_cast<std::size_t>(i) * n + static_cast<std::size_t>(j)] = v;
    });
    if (matrix->code == KEY_RESISTANCE_MATRIX) {
        const double shift = 1e-9 * *std::max_element(diagonal, diagonal + n);
        for (std::size_t i = 0; i < n; ++i)
            a[i * n + i] += shift;
    }
    const bool zero = std::all_of(diagonal, diagonal + n, [](double v) { return v == 0; });
    if (!(zero && matrix->code == KEY_RESISTANCE_MATRIX) && !s_isPositiveDefinite(a, n))
        ERRLOG_LineWarnNew(2626, s_name(matrix), package->name);
    s_release(&a);
}

int MTX_New(Mtx** slot, int kind)
{
    CMN_ASSERT(slot != nullptr);
    Mtx* matrix = nullptr;
    if (!s_allocate(&matrix, 1)) return 0;
    PLACE_Remember(matrix);
    matrix->kind = kind;
    matrix->code = KEY_RESISTANCE_MATRIX;
    matrix->bandwidth = -1;
    matrix->lastRow = -1;
    *slot = matrix;
    return 1;
}

int MTX_KeywordLine(PkgMdl* package, int code, char* text)
{
    CMN_ASSERT(package != nullptr && text != nullptr);
    const char* name = s_keyword(code).name;
    Mtx** slot = s_slot(package, code);
    package->skipMatrix = 1;
    if (*slot != nullptr) {
        ERRLOG_LineErrorNew(2604, name, package->name);
        return 0;
    }
    if (*text == '\0') {
        ERRLOG_LineErrorNew(2603, name);
        return 0;
    }
    const int kind = KRNG_Word(text, s_kindWords);
    if (kind == MTX_UNKNOWN) {
        ERRLOG_LineErrorNew(2602, text, name);
        return 0;
    }
    if (package->pinCount == 0) {
        ERRLOG_LineErrorNew(2605, name);
        return 0;
    }
    Mtx* matrix = nullptr;
    if (!MTX_New(&matrix, kind)) return 0;
    if (!s_begin(matrix, code, package->pinCount)) {
        MTX_Free(matrix);
        return 0;
    }
    *slot = matrix;
    package->reading = matrix;
    package->skipMatrix = 0;
    return 1;
}

int MTX_Bandwidth(PkgMdl* package, char* text)
{
    CMN_ASSERT(package != nullptr && text != nullptr);
    if (package->skipMatrix) return 0;
    Mtx* matrix = package->reading;
    if (matrix == nullptr || matrix->kind != MTX_BANDED) {
        ERRLOG_LineErrorNew(2606);
        return 0;
    }
    if (matrix->bandwidth >= 0) {
        ERRLOG_LineErrorNew(2610, s_name(matrix));
        return 0;
    }
    int bandwidth = 0;
    if (!SEC_ReadCount(text, &bandwidth)) {
        ERRLOG_LineErrorNew(2608, text);
        return 0;
    }
    // Too late for the rows that were read with 0.
    if (matrix->rowCount > 0) return 0;
    matrix->bandwidth = bandwidth;
    if (matrix->bandwidth >= matrix->n) {
        ERRLOG_LineWarnNew(2609, matrix->bandwidth, matrix->n);
        matrix->bandwidth = matrix->n - 1;
    }
    return 1;
}

int MTX_Row(PkgMdl* package, char* text)
{
    CMN_ASSERT(package != nullptr && text != nullptr);
    if (package->skipMatrix) return 0;
    Mtx* matrix = package->reading;
    if (matrix == nullptr) {
        ERRLOG_LineErrorNew(2611);
        return 0;
    }
    MtxReading* reading = matrix->reading;
    s_endRow(matrix);
    if (matrix->kind == MTX_BANDED && matrix->bandwidth < 0 && matrix->rowCount == 0)
        ERRLOG_LineErrorNew(2607, s_name(matrix));
    reading->skipRow = 1;
    const PkgPin* pin = PKGMDL_FindPin(package, text);
    if (pin == nullptr || pin->index >= matrix->n) {
        ERRLOG_LineErrorNew(2612, text);
        return 0;
    }
    if (matrix->rows[pin->index].given) {
        ERRLOG_LineErrorNew(2613, pin->name, s_name(matrix));
        return 0;
    }
    if (pin->index < matrix->lastRow && !matrix->outOfOrder) {
        ERRLOG_LineNoteNew(2628, pin->name);
        matrix->outOfOrder = 1;
    }
    matrix->lastRow = std::max(matrix->lastRow, pin->index);
    matrix->rows[pin->index].given = 1;
    ++matrix->rowCount;
    reading->row = pin->index;
    PLACE_Remember(reading);
    reading->skipRow = 0;
    reading->pin = pin->name;
    reading->tooMany = 0;
    reading->diagonal = 0;
    reading->limit = matrix->n - pin->index;
    if (matrix->kind == MTX_BANDED)
        reading->limit = std::min(reading->limit, std::max(matrix->bandwidth, 0) + 1);
    reading->isMarked = 0;
    return 1;
}

int MTX_ReceiveLine(PkgMdl* package, char* line)
{
    CMN_ASSERT(package != nullptr && line != nullptr);
    if (package->skipMatrix) return 0;
    Mtx* matrix = package->reading;
    if (matrix == nullptr || (matrix->reading->row < 0 && !matrix->reading->skipRow)) {
        ERRLOG_LineErrorNew(2631);
        return 0;
    }
    if (matrix->reading->skipRow) return 0;
    return matrix->kind == MTX_SPARSE ? s_sparseLine(package, matrix, line)
                                      : s_denseLine(matrix, line);
}

int MTX_Fini(PkgMdl* package)
{
    CMN_ASSERT(package != nullptr);
    Mtx* matrix = package->reading;
    package->skipMatrix = 0;
    if (matrix == nullptr) return 0;
    package->reading = nullptr;
    s_endRow(matrix);
    if (matrix->rowCount < matrix->n) {
        const PlaceScope at(matrix);
        ERRLOG_LineErrorNew(2621, s_name(matrix), package->name, matrix->rowCount, matrix->n);
        int missing = 0;
        while (matrix->rows[missing].given)
            ++missing;
        ERRLOG_LineErrorNew(2629, s_name(matrix), s_pinName(package, missing));
    }
    MtxCell* end = matrix->cells + matrix->cellCount;
    if (matrix->cellCount > 0 && !std::is_sorted(matrix->cells, end, s_before))
        std::sort(matrix->cells, end, s_before);
    if (matrix->kind == MTX_BANDED && matrix->bandwidth < 0) matrix->bandwidth = 0;
    s_freeReading(matrix);
    return 1;
}

int MTX_Check(const Mtx* matrix, const PkgMdl* package)
{
    CMN_ASSERT(package != nullptr);
    if (matrix == nullptr || matrix->kind == MTX_UNKNOWN) return 0;
    const PlaceScope at(matrix);
    const std::size_t n = static_cast<std::size_t>(matrix->n);
    double* diagonal = nullptr;
    if (!s_allocate(&diagonal, n)) return 0;
    std::size_t known = 0;
    s_eachElement(matrix, [&](int i, int j, double v) {
        if (i != j) return;
        diagonal[i] = v;
        ++known;
    });
    s_checkDiagonal(matrix, package);
    // A missing row or diagonal is an error of its own; the rest would only repeat it.
    if (known == n) {
        s_checkCoupling(matrix, package, diagonal);
        if (matrix->code == KEY_CAPACITANCE_MATRIX) s_checkRowSums(matrix, package, diagonal);
        s_checkDefinite(matrix, package, diagonal);
    }
    s_release(&diagonal);
    return 1;
}

int MTX_Get(const Mtx* matrix, int i, int j, double* value)
{
    CMN_ASSERT(matrix != nullptr && value != nullptr);
    *value = 0;
    if (i > j) std::swap(i, j);
    if (i < 0 || j >= matrix->n) return 0;
    if (matrix->kind != MTX_SPARSE) {
        if (matrix->kind == MTX_UNKNOWN || j - i >= matrix->rows[i].count) return 0;
        *value = matrix->rows[i].values[j - i];
        return 1;
    }
    const MtxCell* end = matrix->cells + matrix->cellCount;
    const MtxCell sought = {i, j, 0};
    const MtxCell* cell = std::lower_bound<const MtxCell*>(matrix->cells, end, sought, s_before);
    if (cell == end || cell->row != i || cell->col != j) return 0;
    *value = cell->value;
    return 1;
}

void MTX_Free(Mtx* matrix)
{
    if (matrix == nullptr) return;
    s_freeReading(matrix);
    if (matrix->rows != nullptr)
        for (int i = 0; i < matrix->n; ++i)
            s_release(&matrix->rows[i].values);
    s_release(&matrix->rows);
    s_release(&matrix->cells);
    s_release(&matrix);
}
