// The hash index: growth, colliding lengths, keys that are no strings.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "IbisParser/base/index.h"

GTEST_TEST(Index, FindsWhatWasAdded)
{
    std::vector<std::string> names;
    for (int i = 0; i < 20000; ++i)
        names.push_back("name" + std::to_string(i));
    IdxTable table = {nullptr, 0, 0};
    EXPECT_EQ(IDX_FindName(&table, "name1"), nullptr);
    for (std::string& name : names) {
        void** value = nullptr;
        ASSERT_EQ(IDX_SlotName(&table, name.c_str(), &value), 1);
        ASSERT_EQ(*value, nullptr) << name;
        *value = &name;
    }
    EXPECT_EQ(table.count, names.size());
    for (std::string& name : names) {
        ASSERT_EQ(IDX_FindName(&table, name.c_str()), &name);
        void** value = nullptr;
        ASSERT_EQ(IDX_SlotName(&table, name.c_str(), &value), 1);
        ASSERT_EQ(*value, &name) << "a second slot for the same key";
    }
    EXPECT_EQ(IDX_FindName(&table, "name"), nullptr);
    EXPECT_EQ(IDX_FindName(&table, ""), nullptr);
    IDX_Clear(&table);
    EXPECT_EQ(IDX_FindName(&table, "name1"), nullptr);
    IDX_Clear(&table);
}

GTEST_TEST(Index, NumbersAsKeys)
{
    const double keys[] = {0.0, 1e-9, -1e-9};
    IdxTable table = {nullptr, 0, 0};
    for (const double& key : keys) {
        void** value = nullptr;
        ASSERT_EQ(IDX_Slot(&table, &key, sizeof key, &value), 1);
        *value = &table;
    }
    const double same = 1e-9;
    const double other = 2e-9;
    EXPECT_EQ(IDX_Find(&table, &same, sizeof same), &table);
    EXPECT_EQ(IDX_Find(&table, &other, sizeof other), nullptr);
    EXPECT_EQ(IDX_Find(&table, &same, sizeof same - 1), nullptr) << "a prefix is another key";
    IDX_Clear(&table);
}
