// The AMI parameter tree: structure, result codes, value types, guards, size.
#include "IbisParser/amitree.h"

#include <gtest/gtest.h>

#include <string>

#include "IbisParser/cmn.h"
#include "tests/support/aborts.h"

// The tree on one line: (branch children) and [leaf:nameKind 'value':type:word ...]; the level of a
// node where it is not one more than its parent's.
static std::string Drawn(const _tagNodeStruct& node, int level)
{
    std::string text = node.level == level ? "" : "level " + std::to_string(node.level) + " ";
    if (node.kind == NODE_BRANCH) {
        const auto* branch = static_cast<const _tagBranchStruct*>(node.detail);
        text += std::string("(") + branch->name;
        for (int i = 0; i < branch->childCount; ++i)
            text += " " + Drawn(branch->children[i], level + 1);
        return text + ")";
    }
    const auto* leaf = static_cast<const _tagLeafStruct*>(node.detail);
    text += std::string("[") + leaf->name + ":" + std::to_string(leaf->nameKind);
    for (int i = 0; i < leaf->valueCount; ++i) {
        const _tagValueStruct& value = leaf->values[i];
        text += std::string(" '") + value.text + "':" + std::to_string(value.valueType) + ":" +
                std::to_string(value.wordType);
    }
    return text + "]";
}

// The drawing of the tree, or the result code.
static std::string Parsed(std::string text)
{
    const std::string before = text;
    _tagTreeStruct* tree = nullptr;
    const int result = GetParsedTree(text.data(), &tree);
    EXPECT_EQ(text, before);
    if (result != TREE_OK) {
        EXPECT_EQ(tree, nullptr);
        return std::to_string(result);
    }
    std::string drawn = Drawn(tree->nodes[0], 1);
    FreeParsedTree(&tree);
    EXPECT_EQ(tree, nullptr);
    return drawn;
}

GTEST_TEST(AmiTree, Structure)
{
    static const struct {
        const char *label, *text, *tree;
    } rows[] = {
        {"values of every type", "(Root (Leaf 1 2.5 True \"a b\"))",
         "(Root [Leaf:0 '1':1:-1 '2.5':3:-1 'True':2:-1 'a b':0:-1])"},
        {"back to the root", "(Root (A (B 1)) (C 2))", "(Root (A [B:0 '1':1:-1]) [C:0 '2':1:-1])"},
        {"no blanks", "(R(A(B 1)(C 2))(D 3))",
         "(R (A [B:0 '1':1:-1] [C:0 '2':1:-1]) [D:0 '3':1:-1])"},
        {"white space of all kinds", "\t\n( R\r\v( A\f1 \n)\n)\n", "(R [A:0 '1':1:-1])"},
        {"a parenthesis in quotes", "(A (B \")\"))", "(A [B:0 ')':0:-1])"},
        {"leading blanks in quotes stay", "(A (B \"  x  \"))", "(A [B:0 '  x':0:-1])"},
        {"empty quotes", "(A (B \"\" \"  \"))", "(A [B:0 '':-1:-1 '':-1:-1])"},
        {"quoted token ends at its quote", "(A (B \"u\"v))", "(A [B:0 'u':0:-1 'v':0:-1])"},
        {"a list in a leaf drops the leaf", "(A (B 1 (C 2)) (D 3))", "(A [D:0 '3':1:-1])"},
        {"and what follows in it", "(A (B 1(C (E \")\"))4) (D 3))", "(A [D:0 '3':1:-1])"},
        {"text between lists", "(A (B 1) junk \"(\" (C 2)) junk",
         "(A [B:0 '1':1:-1] [C:0 '2':1:-1])"},
        {"a name alone", "(Root (None))", "(Root)"},
        {"its sibling keeps its level", "(Root (A (None) (B 1)) () (C 2))",
         "(Root (A [B:0 '1':1:-1]) [C:0 '2':1:-1])"},
        {"a branch without a name", "((A 1))", "( [A:0 '1':1:-1])"},
        {"names hold dots and quotes", "(a.b (c\"d\" 1))", "(a.b [c\"d\":0 '1':1:-1])"},
        {"only nodes count as lists", "(A 5 (B 1))(C (D 1))", "(C [D:0 '1':1:-1])"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Parsed(row.text), row.tree) << row.label;
}

GTEST_TEST(AmiTree, ResultCodes)
{
    static const struct {
        const char* text;
        int result;
    } rows[] = {
        {"(A (B 1)", TREE_UNBALANCED},
        {"(A (B \"q) ))", TREE_UNBALANCED},
        {"x(A)", TREE_NO_LIST},
        {"", TREE_NO_LIST},
        {" \n", TREE_NO_LIST},
        {")(", TREE_NO_LIST},
        {"(Root 5)", TREE_NO_RECORD},
        {"(A 5 (B 1))", TREE_NO_RECORD},
        {"(A 1)(B 2)", TREE_NO_PARENT},
        {"(A (B 1))(C (D 2))", TREE_NO_PARENT},
        {"(A (B 1)) (C 2)", TREE_NO_PARENT},
        {"(Root)", TREE_CLOSED_TOO_EARLY},
        {"()", TREE_CLOSED_TOO_EARLY},
        {"(A (B 1))(C)", TREE_CLOSED_TOO_EARLY},
        {"(A (B 1)))((C 2)", TREE_CLOSED_TOO_EARLY},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Parsed(row.text), std::to_string(row.result)) << row.text;
    char text[] = "(A (B 1))";
    _tagTreeStruct* tree = nullptr;
    EXPECT_EQ(GetParsedTree(nullptr, &tree), TREE_NO_RECORD);
    EXPECT_EQ(GetParsedTree(text, nullptr), TREE_NO_RECORD);
    FreeParsedTree(&tree);
    FreeParsedTree(nullptr);
}

GTEST_TEST(AmiTree, Words)
{
    EXPECT_EQ(Parsed("(R (Usage In Out Info InOut) (Type Float Integer String Boolean Tap UI)"
                     " (Format Value Range List Corner Increment Steps Table)"
                     " (Default Gaussian Dual-Dirac DjRj) (Description in) (Labels Inf)"
                     " (usage In\"))\"))"),
              "(R [Usage:1 'In':0:0 'Out':0:1 'Info':0:2 'InOut':0:3]"
              " [Type:2 'Float':0:4 'Integer':0:5 'String':0:6 'Boolean':0:7 'Tap':0:8 'UI':0:9]"
              " [Format:3 'Value':0:10 'Range':0:11 'List':0:12 'Corner':0:13 'Increment':0:14"
              " 'Steps':0:15 'Table':0:16]"
              " [Default:4 'Gaussian':0:17 'Dual-Dirac':0:18 'DjRj':0:19] [Description:5 'in':0:-1]"
              " [Labels:6 'Inf':3:-1] [usage:0 'In\"':0:-1])");
}

GTEST_TEST(AmiTree, ValueTypes)
{
    static const struct {
        const char* text;
        int type;
    } rows[] = {
        {"", VALUE_EMPTY},
        {"-7", VALUE_INTEGER},
        {"+3", VALUE_INTEGER},
        {" 4", VALUE_INTEGER},
        {"99999999999999999999", VALUE_INTEGER},
        {"1e-12", VALUE_FLOAT},
        {"0x1F", VALUE_FLOAT},
        {"inf", VALUE_FLOAT},
        {"2.5", VALUE_FLOAT},
        {"1e999", VALUE_FLOAT},
        {"-.5", VALUE_FLOAT},
        {"True", VALUE_BOOLEAN},
        {"False", VALUE_BOOLEAN},
        {"true", VALUE_STRING},
        {"3.5dB", VALUE_STRING},
        {"+", VALUE_STRING},
        {"4 ", VALUE_STRING},
        {"1,5", VALUE_STRING},
        {"Truer", VALUE_STRING},
    };
    for (const auto& row : rows)
        EXPECT_EQ(GetValueType(row.text), row.type) << row.text;
    EXPECT_EQ(GetValueType(nullptr), VALUE_EMPTY);
}

GTEST_TEST(AmiTree, Balance)
{
    static const struct {
        const char* text;
        int balanced, opens;
    } rows[] = {{"(a(b))", 1, 2}, {"(\")\"", 0, 0}, {"(\")\")", 1, 1}, {")(", 1, 1},
                {"", 1, 0},       {"(()", 0, 0},    {"\"((", 1, 0}};
    for (const auto& row : rows) {
        int opens = -1;
        EXPECT_EQ(ISValidBuffer(row.text, &opens), row.balanced) << row.text;
        EXPECT_EQ(opens, row.opens) << row.text;
    }
    int opens = -1;
    EXPECT_EQ(ISValidBuffer(nullptr, &opens), 1);
    EXPECT_EQ(opens, 0);
    EXPECT_EQ(ISValidBuffer("(", nullptr), 0);
}

// The scan works in place: quotes become blanks, and the count is that of the nodes made.
GTEST_TEST(AmiTree, ScanWorksInPlace)
{
    char text[] = "(A (B \"x y\") (C))";
    _tagNodeStruct nodes[3] = {};
    _tagNodeStruct* array = nodes;
    int count = 3;
    EXPECT_EQ(ScanForNodes(text, &array, &count), TREE_OK);
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(text, "(A (B  x y ) (C))");
    _tagTreeStruct* tree = nullptr;
    void* block = nullptr;
    ASSERT_EQ(CMN_malloc(&block, sizeof *tree), 1);
    tree = static_cast<_tagTreeStruct*>(block);
    ASSERT_EQ(CMN_malloc(&block, sizeof nodes), 1);
    tree->nodes = static_cast<_tagNodeStruct*>(block);
    std::copy(nodes, nodes + count, tree->nodes);
    tree->count = count;
    FreeParsedTree(&tree);
}

GTEST_TEST(AmiTree, RunsOfWhiteSpaceAreGuarded)
{
    const std::string fits(120, ' ');
    const std::string tooLong(121, ' ');
    for (const char* shape :
         {"_(A (B 1))", "(_A (B 1))", "(A_(B 1))", "(A (B_1))", "(A (B 1_))", "(A (B 1)_)"}) {
        SCOPED_TRACE(shape);
        std::string text = shape;
        const std::size_t at = text.find('_');
        EXPECT_EQ(Parsed(text.replace(at, 1, fits)), "(A [B:0 '1':1:-1])");
        text = std::string(shape).replace(at, 1, tooLong);
        _tagTreeStruct* tree = nullptr;
        EXPECT_ASSERTION(GetParsedTree(text.data(), &tree), "IbisParser/cmn");
        gbAllowAnyLineLength = 1;
        EXPECT_EQ(Parsed(text), "(A [B:0 '1':1:-1])");
        gbAllowAnyLineLength = 0;
    }
    // Names, values and quoted text may have any length.
    const std::string name(5000, 'n');
    EXPECT_EQ(Parsed("(" + name + " (" + name + " " + name + " \"" + tooLong + "x\"))"),
              "(" + name + " [" + name + ":0 '" + name + "':0:-1 '" + tooLong + "x':0:-1])");
}

GTEST_TEST(AmiTree, MillionNestedLists)
{
    const int depth = 1000000;
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "(a";
    text += "(x 1)" + std::string(depth, ')');
    _tagTreeStruct* tree = nullptr;
    ASSERT_EQ(GetParsedTree(text.data(), &tree), TREE_OK);
    EXPECT_EQ(tree->count, depth + 1);
    const _tagNodeStruct* node = &tree->nodes[0];
    for (int level = 1; level <= depth; ++level) {
        ASSERT_EQ(node->level, level);
        const auto* branch = static_cast<const _tagBranchStruct*>(node->detail);
        ASSERT_EQ(branch->childCount, 1);
        node = &branch->children[0];
    }
    EXPECT_EQ(node->kind, NODE_LEAF);
    FreeParsedTree(&tree);
}

// Wide lists: many children of one branch, many values of one leaf.
GTEST_TEST(AmiTree, WideLists)
{
    const int width = 200000;
    std::string text = "(R (V";
    for (int i = 0; i < width; ++i)
        text += " 1";
    text += ")";
    for (int i = 0; i < width; ++i)
        text += "(c 1)";
    text += ")";
    _tagTreeStruct* tree = nullptr;
    ASSERT_EQ(GetParsedTree(text.data(), &tree), TREE_OK);
    const auto* root = static_cast<const _tagBranchStruct*>(tree->nodes[0].detail);
    ASSERT_EQ(root->childCount, width + 1);
    EXPECT_EQ(static_cast<const _tagLeafStruct*>(root->children[0].detail)->valueCount, width);
    EXPECT_STREQ(static_cast<const _tagLeafStruct*>(root->children[width].detail)->name, "c");
    FreeParsedTree(&tree);
}
