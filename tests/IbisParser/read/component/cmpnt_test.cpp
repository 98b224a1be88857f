// The records of a component. What the rules say of files is tested in tests/data/component.
#include "IbisParser/cmpnt.h"

#include <gtest/gtest.h>

#include "IbisParser/msel.h"
#include "IbisParser/parse.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

static const char s_file[] =
    R"([IBIS Ver] 4.2
[File Name] records.ibs
[File Rev] 1
[Component] First
Si_location Die
[Manufacturer] Quarzel Labs
[Package]
R_pkg 1 NA 2
L_pkg=3n NA NA
C_pkg = 1p NA NA
[Pin] signal_name model_name C_pin R_pin L_pin
A1 D0 sel 1p 20m NA
B2 D1 out
C3 VDD power
[Pin Mapping] pulldown_ref pullup_ref
B2 G P
A1 G P
[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max
A1 B2 200m -1n NA 2n
[Series Pin Mapping] pin_2 model_name function_table_group
B2 A1 sw g1
[Series Switch Groups]
Off
g2 g1 / | the state goes on
On g1 /
[Component] Second
[Model Selector] sel
out  The   default
other Another
[End]
)";

GTEST_TEST(Component, RecordsHoldWhatTheFileSays)
{
    const TempDir folder;
    const LogCapture log;
    gbSuppressBanners = 1;
    ASSERT_EQ(INIT(), 1);
    ASSERT_EQ(PARSE(folder.Write("records.ibs", s_file).c_str(), FILE_IBS), 1);
    IbisRoot* root = nullptr;
    ASSERT_EQ(IBIS_GetIBIS(&root), 1);
    // Newest first.
    ASSERT_STREQ(root->cmpnts->name, "Second");
    const Cmpnt* component = CMPNT_FindByName(root->cmpnts, "First");
    ASSERT_NE(component, nullptr);
    EXPECT_EQ(component->next, nullptr);
    EXPECT_EQ(component->line, 4u);
    EXPECT_EQ(component->Si_location, LOCATION_DIE);
    EXPECT_EQ(component->Timing_location, LOCATION_UNSET);
    EXPECT_EQ(component->package->L_pkg->typ, 3 * 1e-9);
    EXPECT_EQ(component->package->R_pkg->minState, CELL_NA);
    EXPECT_EQ(component->reading, nullptr);

    // The columns follow the header.
    EXPECT_EQ(PIN_Count(component->pins), 3);
    const Pin* first = component->pins;
    EXPECT_STREQ(first->name, "A1");
    EXPECT_EQ(first->C.value, 1e-12);
    EXPECT_EQ(first->R.value, 0.02);
    EXPECT_EQ(first->L.state, CELL_NA);
    EXPECT_EQ(first->next->R.state, CELL_ABSENT);
    EXPECT_EQ(CMPNT_FindPin(component, "C3")->kind, PIN_POWER);
    EXPECT_EQ(CMPNT_FindPin(component, "c3"), nullptr);
    EXPECT_EQ(PIN_Find(component->pins, "B2"), first->next);

    // Pins know their lines in the other tables.
    EXPECT_EQ(first->mapping, component->pinMap->next);
    EXPECT_STREQ(first->mapping->bus[PINMAP_PULLUP], "P");
    EXPECT_EQ(first->pair, component->diffPins);
    EXPECT_EQ(first->next->pair, DIFFPIN_Find(component->diffPins, "B2"));
    EXPECT_EQ(first->pair->tdelayTyp.value, -1e-9);
    EXPECT_EQ(first->pair->tdelayMin.state, CELL_NA);

    const SerMap* series = SERMAP_Find(component->seriesPins, "A1");
    ASSERT_NE(series, nullptr);
    EXPECT_STREQ(series->group, "g1");
    const SerState* state = component->switchStates;
    EXPECT_EQ(state->on, 0);
    EXPECT_STREQ(state->groups->name, "g2");
    EXPECT_STREQ(state->groups->next->name, "g1");
    EXPECT_EQ(state->next->on, 1);

    const MselRow* row = MSEL_FindByName(root->msels, "sel")->rows;
    EXPECT_STREQ(row->model, "out");
    EXPECT_STREQ(row->description, "The   default");
    EXPECT_STREQ(row->next->model, "other");
    FINI();
}
