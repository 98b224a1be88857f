// The numbered messages as this library raises them: the entry points of errlog.h, whose arguments
// the compiler compares with the text of the number. A wrong number and arguments of another kind
// or count than the text takes do not compile.
//
//     ERRLOG_LineErrorNew(1911, keyword);          // a number: compared with its text here
//
//     struct Row {
//         const char* name;
//         ErrNumber<const char*, double> tooLarge; // a column: compared where the table is written
//     };
//     ERRLOG_LineErrorNew(row.tooLarge, model->name, value);
#ifndef IBISPARSER_BASE_RAISE_H
#define IBISPARSER_BASE_RAISE_H

#include <initializer_list>
#include <string_view>
#include <type_traits>

#include "IbisParser/base/messages.h"

// What an argument is once it stands in a variadic call.
enum class ErrArg { Text, Int, Long, Double, Other };

template <typename T>
consteval ErrArg ERRLOG_ArgOf()
{
    using Type = std::decay_t<T>;
    if (std::is_same_v<Type, const char*> || std::is_same_v<Type, char*>) return ErrArg::Text;
    if (std::is_same_v<Type, double> || std::is_same_v<Type, float>) return ErrArg::Double;
    if (!std::is_integral_v<Type> && !std::is_enum_v<Type>) return ErrArg::Other;
    return sizeof(Type) <= sizeof(int) ? ErrArg::Int : ErrArg::Long;
}

// What a conversion of printf takes.
constexpr ErrArg ERRLOG_ArgFor(char conversion)
{
    switch (conversion) {
        case 's':
            return ErrArg::Text;
        case 'c':
        case 'd':
        case 'u':
        case 'x':
            return ErrArg::Int;
        case 'e':
        case 'g':
            return ErrArg::Double;
        case 'l':
            return ErrArg::Long;
        default:
            return ErrArg::Other;
    }
}

// The text of a number, or an empty one. By value: with the sanitizers the address of a row is no
// constant that could be compared.
constexpr std::string_view ERRLOG_TextOf(int number)
{
    const int row = ERRLOG_FindRow(errRows, number);
    if (row >= 0) return errRows[row].text;
    const int later = ERRLOG_FindRow(errLaterRows, number);
    return later >= 0 ? errLaterRows[later].text : std::string_view();
}

// Whether the text takes these arguments, in this order.
constexpr bool ERRLOG_Takes(std::string_view text, std::initializer_list<ErrArg> args)
{
    const ErrArg* arg = args.begin();
    for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%', at + 1)) {
        at = text.find_first_not_of("-+ #.0123456789", at + 1);
        if (at == text.npos) return false;
        if (text[at] == '%') continue;
        if (arg == args.end() || *arg == ErrArg::Other || *arg != ERRLOG_ArgFor(text[at]))
            return false;
        ++arg;
    }
    return arg == args.end();
}

// These are called when a message does not compile; their names are the compiler's complaint.
void ThisNumberHasNoText();
void TheTextTakesOtherArguments();

// A number whose text takes these arguments; 0 stands for no message.
template <ErrArg... args>
class ErrNumberOf {
public:
    consteval ErrNumberOf(int number) : m_Number(static_cast<unsigned>(number))
    {
        if (number == 0) return;
        const std::string_view text = ERRLOG_TextOf(number);
        if (text.empty() || text.ends_with("message."))
            ThisNumberHasNoText();
        else if (!ERRLOG_Takes(text, {args...}))
            TheTextTakesOtherArguments();
    }
    constexpr operator unsigned() const { return m_Number; }

private:
    unsigned m_Number;
};

template <typename... Args>
using ErrNumber = ErrNumberOf<ERRLOG_ArgOf<Args>()...>;

// Never runs: its parameters are what is checked.
template <typename... Args>
void ERRLOG_Check(ErrNumber<Args...>, const Args&...)
{
}

#define ERRLOG_CHECKED(raise, ...) (false ? ERRLOG_Check(__VA_ARGS__) : raise(__VA_ARGS__))
#define ERRLOG_BugNew(...) ERRLOG_CHECKED(ERRLOG_BugNew, __VA_ARGS__)
#define ERRLOG_LineBugNew(...) ERRLOG_CHECKED(ERRLOG_LineBugNew, __VA_ARGS__)
#define ERRLOG_ErrorNew(...) ERRLOG_CHECKED(ERRLOG_ErrorNew, __VA_ARGS__)
#define ERRLOG_LineErrorNew(...) ERRLOG_CHECKED(ERRLOG_LineErrorNew, __VA_ARGS__)
#define ERRLOG_WarnNew(...) ERRLOG_CHECKED(ERRLOG_WarnNew, __VA_ARGS__)
#define ERRLOG_LineWarnNew(...) ERRLOG_CHECKED(ERRLOG_LineWarnNew, __VA_ARGS__)
#define ERRLOG_CautionNew(...) ERRLOG_CHECKED(ERRLOG_CautionNew, __VA_ARGS__)
#define ERRLOG_NoteNew(...) ERRLOG_CHECKED(ERRLOG_NoteNew, __VA_ARGS__)
#define ERRLOG_LineNoteNew(...) ERRLOG_CHECKED(ERRLOG_LineNoteNew, __VA_ARGS__)

#endif
