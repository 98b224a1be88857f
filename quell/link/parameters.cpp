// The parameter string that a model gets.
#include "quell/link/parameters.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#include "quell/base/errors.h"
#include "quell/base/lines.h"

namespace quell {

namespace {

bool ControlCharacter(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

// Characters with a meaning of their own in the string.
bool Syntax(char c)
{
    return c == '(' || c == ')' || c == '"' || ControlCharacter(c);
}

bool SyntaxOrBlank(char c)
{
    return Syntax(c) || c == ' ';
}

struct Node {
    std::string name;
    bool leaf = false;
    std::string value;
    std::vector<std::unique_ptr<Node>> children;
};

[[noreturn]] void Clash(const Setting& setting, const std::string& what)
{
    std::string name;
    for (const std::string& part : setting.path)
        name += (name.empty() ? "" : ".") + part;
    throw InputError("--set " + name + ": " + what);
}

void Insert(Node& root, const Setting& setting, size_t first)
{
    Node* node = &root;
    for (size_t k = first; k < setting.path.size(); ++k) {
        const bool last = k + 1 == setting.path.size();
        const auto known = std::find_if(
            node->children.begin(), node->children.end(),
            [&](const std::unique_ptr<Node>& child) { return child->name == setting.path[k]; });
        if (known != node->children.end()) {
            if (last && (*known)->leaf) Clash(setting, "given twice");
            if (last || (*known)->leaf) Clash(setting, "both a branch and a parameter");
            node = known->get();
            continue;
        }
        node->children.push_back(std::make_unique<Node>());
        node = node->children.back().get();
        node->name = setting.path[k];
        node->leaf = last;
        if (last) node->value = setting.value;
    }
}

void Write(const Node& node, std::string& text)
{
    text += "(" + node.name;
    if (node.leaf) {
        const bool quoted = node.value.empty() || node.value.find(' ') != std::string::npos;
        text += quoted ? " \"" + node.value + "\"" : " " + node.value;
    }
    for (const auto& child : node.children) {
        text += ' ';
        Write(*child, text);
    }
    text += ')';
}

}  // namespace

Setting ParseSetting(std::string_view text)
{
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals == 0)
        throw InputError("--set " + Quoted(text) + " is not of the form NAME=VALUE");
    const std::string_view name = text.substr(0, equals);
    const std::string_view value = text.substr(equals + 1);
    if (std::any_of(name.begin(), name.end(), SyntaxOrBlank))
        throw InputError("--set " + Quoted(text) +
                         ": a name holds no blanks, quotes, parentheses or control characters");
    if (std::any_of(value.begin(), value.end(), Syntax))
        throw InputError("--set " + Quoted(text) +
                         ": a value holds no quotes, parentheses or control characters");
    Setting setting;
    setting.value = value;
    for (size_t begin = 0; begin <= name.size();) {
        const size_t end = std::min(name.find('.', begin), name.size());
        if (end == begin) throw InputError("--set " + Quoted(text) + ": empty part of the name");
        setting.path.emplace_back(name.substr(begin, end - begin));
        begin = end + 1;
    }
    return setting;
}

std::string BuildParameterString(const std::string& root, const std::vector<Setting>& settings)
{
    if (root.empty() || std::any_of(root.begin(), root.end(), SyntaxOrBlank))
        throw InputError(Quoted(root) + " cannot be the root name of a parameter string");
    Node tree;
    tree.name = root;
    for (const Setting& setting : settings) {
        const bool rooted = setting.path.size() > 1 && setting.path.front() == root;
        Insert(tree, setting, rooted ? 1 : 0);
    }
    std::string text;
    Write(tree, text);
    return text;
}

std::string ModelStem(const std::string& model)
{
    return std::filesystem::path(model).stem().string();
}

}  // namespace quell
