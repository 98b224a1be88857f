// The model and submodel sections: each row is a text with one kind of fault, and the messages that
// these sections give for it. Lines count from the header: the text begins at line 4.
#include "IbisParser/mdl.h"

#include <gtest/gtest.h>

#include <string>

#include "IbisParser/submdl.h"
#include "tests/support/IbsLog.h"

namespace {

// Ends the model, and uses it.
const char* const ComponentTail =
    "[Component] c\n[Manufacturer] x\n[Package]\nR_pkg 1m 1m 1m\nL_pkg 1n 1n 1n\n"
    "C_pkg 1p 1p 1p\n[Pin] signal_name model_name R_pin L_pin C_pin\n1 D m\n";

struct Row {
    const char* label;
    const char* version;
    const char* text;
    const char* messages;
};

template <std::size_t n>
void CheckRows(IbsLog* log, const Row (&rows)[n], const std::string& head, const std::string& tail)
{
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(log->Check(row.version, head + row.text + tail + ComponentTail), row.messages)
            << log->Text();
    }
}

// Uses of the models are another test's subject.
IbsLog ModelLog()
{
    return IbsLog({{100, 206},
                   {1600, 1699},
                   {1909, 1923},
                   {2000, 2199},
                   {2700, 2899},
                   {3000, 3199},
                   {3300, 3300},
                   {3901, 3902},
                   {4800, 4899}});
}

const char* const InputModel =
    "[Model] m\nModel_type Input\nC_comp 3p 2p 4p\nVinl = 0.8\nVinh = 2\n";
const char* const OutputModel = "[Model] m\nModel_type Output\nC_comp 3p 2p 4p\n";
const char* const Both =
    "[Model] m\nModel_type I/O\nC_comp 3p 2p 4p\nVinl = 0.8\nVinh = 2\nVmeas = 1.5\n";
const char* const Supply = "[Voltage Range] 3.3 3.0 3.6\n";

}  // namespace

GTEST_TEST(Mdl, SubParameters)
{
    static const Row rows[] = {
        {"legal, with and without =", "3.2",
         "[Model] m\nModel_type=Input\nVinl 0.8V\nVinh=2.0\nC_comp = 3p 2p 4p\n", ""},
        {"unknown", "3.2",
         "[Model] m\nModel_type Input\nVinl 0.8\nVinh 2\nC_comp 3p 2p 4p\nVmax 3\n", "E0106@9"},
        {"case only", "3.2", "[Model] m\nmodel_type input\nvinl 0.8\nVinh 2\nC_Comp 3p 2p 4p\n",
         "W0107@5 W0107@5 W0107@6 W0107@8"},
        {"word twice", "3.2",
         "[Model] m\nModel_type Input\nModel_type Output\nVinl 0.8\nVinh 2\nC_comp 3p 2p 4p\n",
         "E0108@6"},
        {"number twice", "3.2",
         "[Model] m\nModel_type Input\nVinl 0.8\nVinh 2\nVinh 2.1\nC_comp 3p 2p 4p\n", "E1911@8"},
        {"unknown type", "3.2", "[Model] m\nModel_type Inputs\nC_comp 3p 2p 4p\n", "E0109@5"},
        {"type of class 3", "2.1", "[Model] m\nModel_type Series\n", "E0110@5 E2809@7"},
        {"polarity and enable", "3.2",
         "[Model] m\nModel_type 3-state\nPolarity Inverted\nEnable High\nC_comp 3p 2p 4p\n",
         "E0111@6 E0112@7"},
        {"no value, two values", "3.2", "[Model] m\nModel_type\nVinl 0.8 0.9\nC_comp 3p 2p 4p\n",
         "E0113@5 E0113@6"},
        {"of class 4", "3.2",
         "[Model] m\nModel_type Input\nVinl 0.8\nVinh 2\nC_comp_pullup 3p 2p 4p\n", "E0114@8"},
        {"the same in class 4", "4.2",
         "[Model] m\nModel_type Input\nVinl 0.8\nVinh 2\nC_comp_pullup 3p 2p 4p\n", ""},
        {"name of 21 in class 3", "3.2",
         "[Model] a12345678901234567890\nModel_type Input\nVinl 0.8\nVinh 2\nC_comp 3p 2p 4p\n",
         "E0115@4"},
        {"name of 20 in class 3", "3.2",
         "[Model] a1234567890123456789\nModel_type Input\nVinl 0.8\nVinh 2\nC_comp 3p 2p 4p\n", ""},
        {"name of 40 in class 4", "4.0",
         "[Model] a123456789012345678901234567890123456789\nModel_type Input\nVinl 0.8\nVinh "
         "2\nC_comp 3p 2p 4p\n",
         ""},
        {"no name", "3.2", "[Model]\nModel_type Input\nVinl 0.8\nVinh 2\nC_comp 3p 2p 4p\n",
         "E1913@4"},
        {"reserved name, text behind", "3.2",
         "[Model] power 2\nModel_type Input\nVinl 0.8\nVinh 2\nC_comp 3p 2p 4p\n",
         "W0117@4 E1916@4"},
        {"upper-case K", "3.2",
         "[Model] m\nModel_type 3-state\nRref=10K\nVref=0\nVmeas 1.5\nC_comp 3p 2p 4p\n",
         "W0158@6"},
        {"no number", "3.2", "[Model] m\nModel_type Input\nVinl low\nVinh nan\nC_comp 3p 2p 4p\n",
         "E1909@6 E1909@7"},
        {"no type", "3.2", "[Model] m\nC_comp 3p 2p 4p\n", "E0120@7"},
        {"second =", "3.2", "[Model] m\nModel_type = = Input\nVinl 0.8\nVinh 2\nC_comp 3p 2p 4p\n",
         "E1918@5"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, "", Supply);
}

GTEST_TEST(Mdl, ValuesOfTheRecord)
{
    static const Row rows[] = {
        {"no C_comp", "3.2", "[Model] m\nModel_type Output\n", "E0125@7"},
        {"series needs none", "3.2", "[Model] m\nModel_type Series\n", "E2809@7"},
        {"negative and reversed", "3.2", "[Model] m\nModel_type Output\nC_comp 3p 5p -1p\n",
         "E0126@6 N0128@6"},
        {"21 pF", "3.2", "[Model] m\nModel_type Output\nC_comp 21p 20p 22p\n", "W0127@6"},
        {"20 pF", "3.2", "[Model] m\nModel_type Output\nC_comp 20p 19p 22p\n", ""},
        {"zero", "3.2", "[Model] m\nModel_type Output\nC_comp 0 0 0\n", "W0129"},
        {"typ NA", "3.2", "[Model] m\nModel_type Output\nC_comp NA 1p 2p\n", "E3300@6"},
        {"reversed thresholds", "3.2",
         "[Model] m\nModel_type Input\nC_comp 3p 2p 4p\nVinl = 2.0\nVinh = 0.8\n", "E0130@10"},
        {"equal thresholds", "3.2",
         "[Model] m\nModel_type Input\nC_comp 3p 2p 4p\nVinl = 1.0\nVinh = 1.0\n", "N0157@10"},
        {"no thresholds", "3.2", "[Model] m\nModel_type Input\nC_comp 3p 2p 4p\n",
         "W0131@8 W0131@8"},
        {"output with Vinl", "3.2", "[Model] m\nModel_type Output\nC_comp 3p 2p 4p\nVinl = 0.8\n",
         "W0132@9"},
        {"Vmeas outside", "3.2",
         "[Model] m\nModel_type I/O\nC_comp 3p 2p 4p\nVinl = 0.8\nVinh = 2\nVmeas = 2.1\n",
         "N0133@11"},
        {"load of a receiver", "3.2",
         "[Model] m\nModel_type Input\nC_comp 3p 2p 4p\nVinl = 0.8\nVinh = 2\nVmeas = 1.5\nCref = "
         "5p\n",
         "W0134@12 W0134@12"},
        {"signs of the load", "3.2",
         "[Model] m\nModel_type Output\nC_comp 3p 2p 4p\nVmeas = 1.5\nRref = 0\nVref = 0\nCref = "
         "-1p\n",
         "E0135@12 E0136@12"},
        {"incomplete load", "3.2", "[Model] m\nModel_type Output\nC_comp 3p 2p 4p\nRref = 50\n",
         "W0137@9 W0137@9"},
        {"enable of an output", "3.2",
         "[Model] m\nModel_type Output\nEnable Active-Low\nC_comp 3p 2p 4p\n", "N0154@9"},
        {"differential without external model", "4.2", "[Model] m\nModel_type Output_diff\n",
         "E0155@7"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, "", Supply);
}

GTEST_TEST(Mdl, Ranges)
{
    static const Row rows[] = {
        {"one value", "3.2", "[Voltage Range] 3.3\n", "E3901@7 E3901@7"},
        {"typ NA", "3.2", "[Voltage Range] NA 3.0 3.6\n", "E3300@7"},
        {"three references", "3.2",
         "[Pullup Reference] 3.3 3 3.6\n[Pulldown Reference] 0 0 0\n[POWER Clamp Reference] 3.3 3 "
         "3.6\n",
         "E0140@10"},
        {"four references", "3.2",
         "[Pullup Reference] 3.3 3 3.6\n[Pulldown Reference] 0 0 0\n[POWER Clamp Reference] 3.3 3 "
         "3.6\n[GND Clamp Reference] 0 0 0\n",
         ""},
        {"four and the range", "3.2",
         "[Pullup Reference] 3.3 3 3.6\n[Pulldown Reference] 0 0 0\n[POWER Clamp Reference] 3.3 3 "
         "3.6\n[GND Clamp Reference] 0 0 0\n[Voltage Range] 3.3 3 3.6\n",
         "N0143@12"},
        {"equal references", "3.2",
         "[Voltage Range] 3.3 3 3.6\n[Pullup Reference] 3.3 3 3.6\n[Pulldown Reference] 3.3 NA "
         "NA\n",
         "W0141@10"},
        {"twice", "3.2", "[Voltage Range] 3.3 3 3.6\n[Voltage Range] 3.3\n", "E0118@8"},
        {"reversed", "3.2", "[Voltage Range] 3.3 3.6 3\n", "N0142@7"},
        {"60 V", "3.2", "[Voltage Range] 60 NA NA\n", "W0145@7"},
        {"not positive", "3.2", "[Voltage Range] 0 NA NA\n", "W0156@7"},
        {"temperature", "3.2", "[Voltage Range] 3.3 3 3.6\n[Temperature Range] 25 -101 301\n",
         "W0144@8 W0144@8"},
        {"transit time", "3.2", "[Voltage Range] 3.3 3 3.6\n[TTgnd] 1n 1n -1n\n",
         "E0147@8 E0146@9"},
        {"data below", "3.2", "[Voltage Range] 3.3 3 3.6\n3.3 3 3.6\n", "E0116@8"},
        {"infinite", "3.2", "[Voltage Range] 3.3 3 inf\n", "E1909@7"},
        {"upper-case K", "3.2", "[Voltage Range] 3.3 3 3.6\n[Temperature Range] 300K 250K 350K\n",
         "W0158@8 W0158@8 W0158@8 W0144@8"},
        {"external reference unused", "4.2",
         "[Voltage Range] 3.3 3 3.6\n[External Reference] 1 1 1\n", "N0150@9"},
        {"unknown keyword in mid-model", "3.2",
         "[Future Range] 1 2 3\n1 2 3\n[Voltage Range] 3.3 3 3.6\n", ""},
        {"only an unknown keyword", "3.2", "[Voltage Range] 3.3\n[Future Range] 1 2 3\n",
         "E3901@7 E3901@7"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, OutputModel, "");
}

GTEST_TEST(Mdl, TerminatorElements)
{
    static const Row rows[] = {
        {"all", "3.2",
         "[Model] m\nModel_type Terminator\nC_comp 3p 2p 4p\n[Rgnd] 50 NA NA\n[Rpower] 50 NA "
         "NA\n[Rac] 50 NA NA\n[Cac] 1p NA NA\n",
         ""},
        {"half of a pair", "3.2",
         "[Model] m\nModel_type Terminator\nC_comp 3p 2p 4p\n[Rac] 50 NA NA\n", "E0149@9"},
        {"zero", "3.2", "[Model] m\nModel_type Terminator\nC_comp 3p 2p 4p\n[Rgnd] 50 0 60\n",
         "E0148@7"},
        {"in an output", "3.2", "[Model] m\nModel_type Output\nC_comp 3p 2p 4p\n[Rgnd] 50 NA NA\n",
         "E0119@7"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, "", Supply);
}

GTEST_TEST(Mdl, KeywordsByType)
{
    static const Row rows[] = {
        {"driver tables in a receiver", "3.2",
         "[Model] m\nModel_type Input\nVinl 1\nVinh 2\nC_comp 3p 2p 4p\n[Pulldown]\n0 0 0 0\n1 1 1 "
         "1\n[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\n",
         "W0122@9 W0122@12"},
        {"clamp in a series model", "3.2",
         "[Model] m\nModel_type Series\n[R Series] 10 NA NA\n[GND Clamp]\n0 0 0 0\n1 1 1 1\n",
         "E0119@7"},
        {"schedule in a receiver", "3.2",
         "[Model] m\nModel_type Input\nVinl 1\nVinh 2\nC_comp 3p 2p 4p\n[Driver Schedule]\nm 0 NA "
         "0 NA\n",
         "E0119@9 E3006"},
        {"thresholds in a driver, not said twice", "4.2",
         "[Model] m\nModel_type Output\nC_comp 3p 2p 4p\n[Receiver Thresholds]\nVth 1\nVinh_ac "
         "0.2\nVinh_dc 0.1\nVinl_ac -0.2\nVinl_dc -0.1\n",
         "E0119@7"},
        {"without a type", "3.2", "[Model] m\n[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\n",
         "E0120@9"},
        {"text behind", "3.2",
         "[Model] m\nModel_type Output\nC_comp 3p 2p 4p\n[Ramp] fast\ndV/dt_r 1/1n NA NA\ndV/dt_f "
         "1/1n NA NA\n",
         "W0117@7"},
        {"twice, the second is dropped", "3.2",
         "[Model] m\nModel_type Output\nC_comp 3p 2p 4p\n[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n "
         "NA NA\n[Ramp]\nnonsense\n",
         "E0118@10"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, "", Supply);
}

GTEST_TEST(Mdl, BlocksLeftOpen)
{
    static const Row rows[] = {
        {"algorithmic model", "5.0", "[Algorithmic Model]\n[Voltage Range] 3.3 3 3.6\n",
         "E0151@11"},
        {"its end alone", "5.0", "[Voltage Range] 3.3 3 3.6\n[End Algorithmic Model]\n",
         "E0152@11"},
        {"EMI", "5.0", "[Begin EMI Model]\nModel_Domain Digital\n[Voltage Range] 3.3 3 3.6\n",
         "E4805@12"},
        {"EMI to the end", "5.0",
         "[Voltage Range] 3.3 3 3.6\n[Begin EMI Model]\nModel_Domain Digital\n", "E4805@13"},
        {"composite current without waveform", "5.0",
         "[Voltage Range] 3.3 3 3.6\n[Composite Current]\n0 0 0 0\n", "E0153@11"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, Both, "");
}

GTEST_TEST(Ramp, Lines)
{
    static const Row rows[] = {
        {"legal", "3.2", "dV/dt_r 1/1n 0.9/2n NA\ndV/dt_f = 1/1n NA NA\nR_load=500\n", ""},
        {"unknown", "3.2", "dV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\nC_load 1p\n", "E1601@11"},
        {"twice", "3.2",
         "dV/dt_r 1/1n NA NA\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\nR_load 50\nR_load 50\n",
         "E1602@10 E1602@13"},
        {"form", "3.2", "dV/dt_r 1.0 1/1n/2 /1n\ndV/dt_f NA nan/1n 1/\n",
         "E1603@9 E1603@9 E1603@9 E1603@10 E1603@10 E1603@10"},
        {"missing and surplus", "3.2", "dV/dt_r 1/1n 1/1n\ndV/dt_f 1/1n NA NA 1/1n\n",
         "E1603@9 E1603@10"},
        {"sign", "3.2", "dV/dt_r -1/1n 1/0 NA\ndV/dt_f 1/1n NA NA\n", "E1604@9 E1604@9"},
        {"load", "3.2", "dV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\nR_load 0\n", "E1605@11"},
        {"upper-case K, digit in the unit", "3.2",
         "dV/dt_r 1/1n NA NA\ndV/dt_f 1V5/1n NA NA\nR_load 1K\n", "W1910@10 W0158@11"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, std::string(OutputModel) + Supply + "[Ramp]\n", "");
}

GTEST_TEST(MdlSpec, Entries)
{
    static const Row rows[] = {
        {"legal", "5.0",
         "Vinh 2 1.9 2.1\nVinl 0.8 NA NA\nS_overshoot_high 4 3.6 4.4\nPulse_high 3 3 3\nPulse_low "
         "0 0 0\nPulse_time 3n 3n 3n\nVmeas 1.5 1.4 1.6\nWeak_R 10k NA NA\nWeak_V 1 NA NA\n",
         ""},
        {"none", "3.2", "", "W3105@12"},
        {"unknown", "3.2", "Vmin 1 2 3\n", "E3102@12 W3105@13"},
        {"of a later version", "4.2", "Weak_R 1k 1k 1k\n", "E3103@12"},
        {"halves of a pair", "3.2", "Vinh+ 2 2 2\nD_overshoot_high 4 4 4\nPulse_time 1n 1n 1n\n",
         "E3106@15 E3106@15 E3106@15 E3106@15 E3106@15"},
        {"order in a column", "3.2", "Vinh+ 2 2 2\nVinh- 1.5 2.5 NA\nVinl 2 0.5 1\nVinh 1.9 1 1\n",
         "E3106@16 E3106@16 E3107@16 E3107@16 E3107@16 N3108@16 N3120@16 N3120@16 N0133@16"},
        {"against the model's value", "3.2", "Vinl 2.5 NA NA\n", "E3107@13 N3120@13 N0133@13"},
        {"signs", "5.0", "D_overshoot_time -1n NA NA\nD_overshoot_high 4 4 4\nWeak_R 0 NA NA\n",
         "E3106@15 E3109@15 E3110@15"},
        {"limits", "3.2",
         "S_overshoot_high 2 NA NA\nS_overshoot_low 0.8 NA NA\nD_overshoot_high 1.9 NA "
         "NA\nD_overshoot_low 0.9 NA NA\nD_overshoot_time 1n NA NA\nPulse_high 1 NA NA\nPulse_low "
         "1 NA NA\nPulse_time 1n NA NA\n",
         "W3111@20 W3112@20 W3113@20 W3114@20 W3115@20 W3116@20"},
        {"one edge", "4.2",
         "Cref_rising 1p NA NA\nVmeas_rising 1.4 NA NA\nVmeas_falling 1.6 NA NA\nVmeas 1.5 NA NA\n",
         "E3117@16 W3118@16"},
        {"Vmeas outside", "3.2", "Vmeas 2.5 NA NA\n", "N3119@13 N3120@13"},
        {"above the supply", "3.2", "Vinh 4.0 NA NA\n", "N3120@13 W3121@13"},
        {"typ NA", "3.2", "Vinh NA 1.9 2.1\n", "E3300@12"},
        {"twice", "3.2", "Vinh 2 2 2\nVinh 2 2 2\n", "E1911@13"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, std::string(Both) + Supply + "[Model Spec]\n", "");

    static const Row receiver[] = {{"Vmeas of a receiver", "3.2", "Vmeas 1 1 1\n", "W3104@11"}};
    CheckRows(&log, receiver, std::string(InputModel) + Supply + "[Model Spec]\n", "");
    static const Row driver[] = {{"Vinl of a driver", "3.2", "Vinl 1 1 1\n", "W3104@9"}};
    CheckRows(&log, driver, std::string(OutputModel) + Supply + "[Model Spec]\n", "");
}

GTEST_TEST(RcvTh, Thresholds)
{
    static const char single[] = "Vth 1.6\nVinh_ac 0.4\nVinh_dc 0.2\nVinl_ac -0.4\nVinl_dc -0.2\n";
    static const char differential[] =
        "Vcross_low 0.6\nVcross_high 0.9\nVdiff_ac 0.4\nVdiff_dc 0.2\n";
    const Row rows[] = {
        {"single-ended", "4.2", single, ""},
        {"differential on a single-ended pin", "4.2", differential, "W2020"},
        {"none", "4.2", "", "E2005@11"},
        {"unknown", "4.2", "Vhigh 1\n", "E2002@11 E2005@12"},
        {"two values, no value", "4.2",
         "Vth 1.6 1.7\nVinh_ac\nVinh_dc 0.2\nVinl_ac -0.4\nVinl_dc -0.2\n",
         "E2003@11 E2003@12 E2007"},
        {"unknown supply", "4.2", "Vth_min 1\nReference_supply Vcc\n", "E2004@12 E2009 E2011"},
        {"missing members", "4.2", "Tslew_ac 1n\nVth 1.6\nVinh_ac 0.4\n", "E2007 E2007 E2007"},
        {"missing differential members", "4.2", "Tdiffslew_ac 1n\nVdiff_ac 0.4\n",
         "E2008 E2008 E2008 W2020"},
        {"signs", "4.2",
         "Vth 1.6\nVinh_ac -0.4\nVinh_dc 0.2\nVinl_ac 0.4\nVinl_dc -0.2\nTslew_ac 0\n",
         "E2012 E2013 E2012"},
        {"nesting", "4.2", "Vth 1.6\nVinh_ac 0.1\nVinh_dc 0.2\nVinl_ac -0.1\nVinl_dc -0.2\n",
         "E2014 E2014"},
        {"spread", "4.2",
         "Vth 1.6\nVinh_ac 0.4\nVinh_dc 0.2\nVinl_ac -0.4\nVinl_dc -0.2\nVth_min 1.7\nVth_max "
         "1.8\n",
         "E2010"},
        {"sensitivity alone and large", "4.2",
         "Vth 1.6\nVinh_ac 0.4\nVinh_dc 0.2\nVinl_ac -0.4\nVinl_dc -0.2\nThreshold_sensitivity "
         "1.1\n",
         "W2016 W2018"},
        {"supply that is not there", "4.2",
         "Vth 1.6\nVinh_ac 0.4\nVinh_dc 0.2\nVinl_ac -0.4\nVinl_dc -0.2\nThreshold_sensitivity "
         "0.5\nReference_supply Ext_ref\n",
         "E2017"},
        {"outside the rails", "4.2",
         "Vth 3.4\nVinh_ac 0.4\nVinh_dc 0.2\nVinl_ac -0.4\nVinl_dc -0.2\n", "W2019 N2021"},
        {"crossing window", "4.2", "Vcross_low 0.9\nVcross_high 0.9\nVdiff_ac 0.4\nVdiff_dc 0.2\n",
         "E2015 W2020"},
        {"far from Vinl", "4.2", "Vth 1.2\nVinh_ac 0.4\nVinh_dc 0.2\nVinl_ac -0.4\nVinl_dc -0.2\n",
         "N2021"},
        {"twice", "4.2", "Vth 1.6\nVth 1.6\nVinh_ac 0.4\nVinh_dc 0.2\nVinl_ac -0.4\nVinl_dc -0.2\n",
         "E1911@12"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows,
              "[Model] m\nModel_type Input\nC_comp 3p 2p 4p\nVinl = 1.3\nVinh = 1.9\n" +
                  std::string(Supply) + "[Receiver Thresholds]\n",
              "");
}

GTEST_TEST(DrvSh, Schedules)
{
    static const Row rows[] = {
        {"legal patterns", "4.2",
         "a 0 NA 0 NA\nb 1n 3n NA NA\na NA 0 NA 1n\nb NA NA 1n 2n\nb 1n 2n 1n 2n\n",
         "N3014 N3014 N3014"},
        {"columns", "4.2", "a 0 NA 0\na 0 NA 0 NA 0\na 0 NA 0 NA\n", "E3002@13 E3002@14"},
        {"name of 41", "4.2", "a1234567890123456789012345678901234567890 0 NA 0 NA\n",
         "E3003@13 E3005"},
        {"none", "4.2", "", "E3004@13"},
        {"delays", "4.2", "b x NA 0 NA\nb -1n NA 0 NA\n", "E2100@13 E2101@14 N3014 N3014"},
        {"not defined", "4.2", "c 0 NA 0 NA\n", "E3005"},
        {"itself", "4.2", "m 0 NA 0 NA\n", "E3006"},
        {"a receiver", "4.2", "r 0 NA 0 NA\n", "E3008 N3014"},
        {"all NA", "4.2", "a NA NA NA NA\n", "E3009"},
        {"does not return", "4.2", "a 1n NA NA 2n\n", "E3010"},
        {"on after off", "4.2", "a 3n 1n NA NA\na NA NA 2n 2n\n", "W3011 W3011"},
        {"another supply", "4.2", "o 0 NA 0 NA\n", "W3013"},
        {"upper-case K in a delay only", "4.2", "1K 0K NA 0 NA\n", "W0158@13 E3005"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows,
              std::string(OutputModel) + "Vmeas 1\n" + Supply + "[Pullup Reference] 3.3 3 3.6\n" +
                  "[Pulldown Reference] 0 0 0\n[Temperature Range] 50 0 100\n[Driver Schedule]\n",
              "[Model] a\nModel_type Output\nC_comp 0 0 0\nC_comp_pullup 1p 1p 1p\n[Voltage Range] "
              "3.3 3 3.6\n"
              "[Model] b\nModel_type Open_sink\nC_comp 1p 1p 1p\n[Voltage Range] 3.3 3 3.6\n"
              "[Model] o\nModel_type Output\nC_comp_pullup 1p 1p 1p\n[Voltage Range] 3.2 3 3.6\n"
              "[Model] r\nModel_type Input\nVinl 1\nVinh 2\nC_comp 1p 1p 1p\n[Voltage Range] 3.3 3 "
              "3.6\n");
}

GTEST_TEST(AddSub, Lines)
{
    static const Row rows[] = {
        {"legal", "3.2", "k All\nc Driving\nc Non-Driving\n", ""},
        {"columns", "3.2", "k\nk All now\nk All\n", "E2702@9 E2702@10"},
        {"mode", "3.2", "k Always\n", "E2703@9"},
        {"name of 21", "3.2", "a12345678901234567890 All\n", "E2704@9 E0200"},
        {"twice", "3.2", "c Driving\nk All\nc All\nk Driving\n", "E2705@11 E2705@12"},
        {"none", "3.2", "", "E2706@9"},
        {"not defined", "3.2", "keepr All\n", "E0200"},
        {"two holders", "3.2", "k All\nk2 Driving\n", "W0206"},
        {"holders of different modes", "3.2", "k Non-Driving\nk2 Driving\n", ""},
    };
    // Three of the four submodels are added in any case.
    IbsLog log({{100, 200}, {202, 209}, {2700, 2799}});
    CheckRows(&log, rows,
              "[Model] m\nModel_type 3-state\nC_comp 3p 2p 4p\n" + std::string(Supply) +
                  "[Add Submodel]\n",
              "[Submodel] k\nSubmodel_type Bus_hold\n[Submodel] k2\nSubmodel_type Bus_hold\n"
              "[Submodel] c\nSubmodel_type Dynamic_clamp\n");
}

GTEST_TEST(AddSub, ModesByType)
{
    static const struct {
        const char* type;
        const char* driving;
        const char* nonDriving;
    } rows[] = {
        {"3-state", "", ""},
        {"I/O_open_drain", "", ""},
        {"Output", "", "E0202"},
        {"Open_drain", "", "E0202"},
        {"Open_source", "", "E0202"},
        {"3-state_ECL", "", ""},
        {"Output_diff", "", "E0202"},
        {"3-state_diff", "", ""},
        {"Input", "E0202", ""},
        {"Input_ECL", "E0202", ""},
        {"Terminator", "E0202", ""},
        {"Series", "E0203", "E0203"},
        {"Series_switch", "E0203", "E0203"},
    };
    IbsLog log({{200, 209}});
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const auto check = [&](const char* mode) {
            return log.Check("4.2", std::string("[Model] m\nModel_type ") + row.type +
                                        "\n[Add Submodel]\nk " + mode +
                                        "\n[Submodel] k\nSubmodel_type Bus_hold\n" + ComponentTail);
        };
        EXPECT_EQ(check("Driving"), row.driving);
        EXPECT_EQ(check("Non-Driving"), row.nonDriving);
        if (std::string(row.driving) != "E0203") {
            EXPECT_EQ(check("All"), "");
        }
    }
}

GTEST_TEST(MdlTest, Submodels)
{
    IbsLog log({{200, 209}, {3600, 3600}});
    const std::string model = "[Model] m\nModel_type 3-state\n[Add Submodel]\nf Non-Driving\n";
    EXPECT_EQ(log.Check("4.2", model + ComponentTail), "E0205");
    EXPECT_EQ(log.Check("4.2", model +
                                   "[Submodel] f\nSubmodel_type Fall_back\n[Submodel] g\n"
                                   "Submodel_type Fall_back\n[Submodel] f\n"
                                   "Submodel_type Fall_back\n" +
                                   ComponentTail),
              "E3600 W0201 W0204");
}

GTEST_TEST(MdlTest, References)
{
    static const char models[] =
        "[Model] a\nModel_type Output\n[Driver Schedule]\nb 0 NA 0 NA\nc 0 NA 0 NA\n"
        "[Model] b\nModel_type Output\n[Model] c\nModel_type Output\n[Model] d\n"
        "Model_type Output\n";
    static const char head[] =
        "[Component] c\n[Manufacturer] x\n[Package]\nR_pkg 1m 1m 1m\nL_pkg 1n 1n 1n\n"
        "C_pkg 1p 1p 1p\n[Pin] signal_name model_name R_pin L_pin C_pin\n1 VDD POWER\n";
    IbsLog log({{210, 212}});
    EXPECT_EQ(log.Check("4.2", std::string(head) +
                                   "2 A a\n3 B b\n4 S s\n[Model Selector] s\n"
                                   "d first\n" +
                                   models),
              "N0212");
    EXPECT_EQ(log.Check("4.2", std::string(head) + "2 A a\n" + models), "N0212 N0212 W0210");
    // A pin that names an undefined model: someone tried.
    EXPECT_EQ(log.Check("4.2", std::string(head) + "2 A x\n[Model] b\nModel_type Output\n"),
              "W0210");
    EXPECT_EQ(log.Check("4.2", std::string(head) + "[Model] b\nModel_type Output\n"), "E0211");
}

GTEST_TEST(MdlTest, DifferentialLoad)
{
    static const char head[] =
        "[Component] c\n[Manufacturer] x\n[Package]\nR_pkg 1m 1m 1m\nL_pkg 1n 1n 1n\n"
        "C_pkg 1p 1p 1p\n[Pin] signal_name model_name R_pin L_pin C_pin\n1 P s\n2 N s\n";
    static const char rest[] =
        "[Model Selector] s\nm first\n[Model] m\nModel_type Input\nC_comp 1p 1p 1p\n"
        "Rref_diff 100\n[Voltage Range] 3.3 3 3.6\n[Receiver Thresholds]\nVcross_low 0.6\n"
        "Vcross_high 0.9\nVdiff_ac 0.4\nVdiff_dc 0.2\n";
    IbsLog log({{138, 138}, {2000, 2099}});
    EXPECT_EQ(log.Check("4.2", std::string(head) + rest), "W2020 W0138");
    EXPECT_EQ(log.Check("4.2", std::string(head) +
                                   "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n"
                                   "1 2 0.2 0 0 0\n" +
                                   rest),
              "");
}

GTEST_TEST(SerEl, Elements)
{
    static const Row rows[] = {
        {"legal", "3.2", "Series\n[R Series] 10 9 11\n[L Series] 0 0 0\n[Rl Series] 1 1 1\n", ""},
        {"in an output", "3.2", "Terminator\nC_comp 1p 1p 1p\n[R Series] 10 9 11\n[On]\n",
         "E2801@7 E2803@8"},
        {"outside On and Off", "3.2",
         "Series_switch\n[R Series] 10 9 11\n[On]\n[R Series] 10 9 11\n[Off]\n", "E2802@6"},
        {"twice in a state", "3.2",
         "Series_switch\n[On]\n[R Series] 10 9 11\n[R Series] 10 9 11\n[Off]\n[R Series] 1k 1k "
         "1k\n",
         "E2804@8"},
        {"state twice", "3.2",
         "Series_switch\n[On]\n[R Series] 10 9 11\n[Off]\n[On]\n[R Series] 10 9 11\n[C Series] 1p "
         "1p 1p\n",
         "E0118@9 E2804@10"},
        {"values", "3.2", "Series\n[R Series] 10 0 11\n[C Series] -1p 0 1p\n", "E2805@6 E2805@7"},
        {"companions", "3.2",
         "Series\n[Rl Series] 10 9 11\n[Rc Series] 10 9 11\n[Lc Series] 1n 1n 1n\n",
         "E2806@10 E2807@10 E2808@10"},
        {"none", "3.2", "Series_switch\n[On]\n[Off]\n", "E2809@9"},
        {"state missing", "3.2", "Series_switch\n[On]\n[R Series] 10 9 11\n", "E2810@9"},
        {"two kinds of table", "3.2",
         "Series\n[Series Current]\n0 0 0 0\n1 1 1 1\n[Series MOSFET]\nVds = 1\n0 0 0 0\n1 1 1 1\n",
         "W2811@14"},
        {"table twice", "3.2",
         "Series\n[Series Current]\n0 0 0 0\n1 1 1 1\n[Series Current]\nnonsense\n", "E2804@9"},
        {"text and data", "3.2", "Series_switch\n[On] now\n1 2 3\n[R Series] 10 9 11\n5\n[Off]\n",
         "W0117@6 E0116@7 E0116@9"},
        {"typ NA, K", "3.2", "Series\n[R Series] NA 9K 11\n", "W0158@6 E3300@6"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, "[Model] m\nModel_type ", Supply);
}

GTEST_TEST(MdlEmi, Lines)
{
    static const Row rows[] = {
        {"legal", "5.0", "Model_emi_type Not_a_ferrite\nModel_Domain = Analog\n[End EMI Model]\n",
         ""},
        {"empty", "5.0", "[End EMI Model]\n", "N4808@12"},
        {"unknown, twice", "5.0",
         "Domain Digital\nModel_Domain Digital\nModel_Domain Digital\n[End EMI Model]\n",
         "E4801@12 E4802@14"},
        {"words", "5.0", "Model_emi_type Iron\nModel_Domain Mixed\n[End EMI Model]\n",
         "E4803@12 E4804@13"},
        {"ferrite", "5.0", "Model_emi_type Ferrite\n[End EMI Model]\n", "W4807@13"},
        {"two ends", "5.0", "Model_Domain Digital\n[End EMI Model]\n[End EMI Model]\n", "E4806@14"},
        {"twice", "5.0",
         "Model_Domain Digital\n[End EMI Model]\n[Begin EMI Model]\nnonsense\n[End EMI Model]\n",
         "E0118@14"},
    };
    IbsLog log = ModelLog();
    CheckRows(&log, rows, std::string(Both) + Supply + "[Begin EMI Model]\n", "");
}

GTEST_TEST(SubMdl, Records)
{
    static const Row rows[] = {
        {"bus hold", "3.2",
         "Submodel_type Bus_hold\n[Submodel Spec]\nV_trigger_r 1.3 1.2 1.4\nV_trigger_f = 1.2 1.1 "
         "1.3\nOff_delay 1n 1n 1n\n[Pullup]\n0 0 0 0\n1 -1 -1 -1\n",
         ""},
        {"unknown sub-parameter and type", "3.2", "Type Bus_hold\nSubmodel_type Bus_holder\n",
         "E2206@5 E2207@6"},
        {"type of class 4", "3.2",
         "Submodel_type Fall_back\n[Submodel Spec]\nV_trigger_r 1.3 1.2 1.4\n", "E2208@5"},
        {"type twice, none", "3.2",
         "Submodel_type Dynamic_clamp\nSubmodel_type Dynamic_clamp\n[Submodel] t\n",
         "E2209@6 E2210@8"},
        {"keyword twice", "3.2",
         "Submodel_type Dynamic_clamp\n[GND Clamp]\n0 0 0 0\n1 0 0 0\n[GND Clamp]\nnonsense\n",
         "E2212@9"},
        {"of another type", "3.2",
         "Submodel_type Dynamic_clamp\n[Pulldown]\n0 0 0 0\n1 1 1 1\n[Submodel Spec]\nOff_delay 1n "
         "1n 1n\n",
         "E2213@6 E2215@10"},
        {"spec", "3.2", "Submodel_type Bus_hold\n[Submodel Spec]\nV_trigger 1 1 1\n",
         "E2214@7 E2221@8 E2216@8 E2216@8"},
        {"one trigger of a holder", "3.2",
         "Submodel_type Bus_hold\n[Submodel Spec]\nV_trigger_r 1.3 1.2 1.4\n", "E2216@8"},
        {"no trigger of a fall-back", "4.2", "Submodel_type Fall_back\n", "E2216@6"},
        {"delay", "3.2",
         "Submodel_type Bus_hold\n[Submodel Spec]\nV_trigger_r 1.3 1.2 1.4\nV_trigger_f 1.2 1.1 "
         "1.3\nOff_delay 1n -1n -1n\n",
         "E2217@10"},
        {"pulse without clamp and trigger", "3.2",
         "Submodel_type Dynamic_clamp\n[GND Pulse Table]\n0 0 0 0\n1n 1 1 1\n2n 0 0 0\n",
         "E2216@10 E2220@10"},
        {"trigger without pulse", "3.2",
         "Submodel_type Dynamic_clamp\n[Submodel Spec]\nV_trigger_r 1.3 1.2 1.4\n", "W2222@8"},
        {"triggers reversed", "3.2",
         "Submodel_type Bus_hold\n[Submodel Spec]\nV_trigger_r 1.3 1.2 1.4\nV_trigger_f 1.3 1.3 "
         "1.5\n",
         "N2223@9 N2223@9"},
        {"text behind", "3.2", "Submodel_type Dynamic_clamp\n[GND Clamp] now\n0 0 0 0\n1 0 0 0\n",
         "W2219@6"},
        {"unknown keyword in mid-submodel", "3.2",
         "Submodel_type Bus_hold\n[Future]\n1 2 3\n[Submodel Spec]\nV_trigger_r 1.3 1.2 "
         "1.4\nV_trigger_f 1.2 1.1 1.3\n",
         ""},
    };
    IbsLog log({{2200, 2299}, {3300, 3300}});
    CheckRows(&log, rows, "[Submodel] s\n", "");
    static const Row names[] = {
        {"no name", "3.2", "[Submodel]\n", "E2210@5"},
        {"name of 21", "3.2", "[Submodel] a12345678901234567890 x\n", "W2219@4 E2211@4 E2210@5"},
    };
    CheckRows(&log, names, "", "");
}

// What the records hold, and that they are released with the document.
GTEST_TEST(Mdl, RecordAndReferences)
{
    const std::string path = std::string(QUELL_SOURCE_DIR) + "/tests/data/model/record.ibs";
    LogCapture log;
    gbSuppressBanners = 1;
    ASSERT_TRUE(INIT());
    ASSERT_TRUE(PARSE(path.c_str(), FILE_IBS));
    IbisRoot* root = nullptr;
    ASSERT_TRUE(IBIS_GetIBIS(&root));
    const Mdl* model = MDL_FindByName(root->mdls, "buffer");
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->type, MDL_IO);
    EXPECT_EQ(model->enable, MDL_ACTIVE_LOW);
    EXPECT_EQ(model->C_comp->max, 4e-12);
    ASSERT_NE(model->ramp, nullptr);
    EXPECT_EQ(model->ramp->rise[CORNER_MIN].dV, 0.9);
    EXPECT_EQ(model->ramp->fall[CORNER_MAX].state, CELL_NA);
    EXPECT_EQ(model->ramp->R_load.value, 50.0);
    EXPECT_EQ(MDLSPEC_InputHigh(model, CORNER_MIN).value, 1.8);
    EXPECT_EQ(MDLSPEC_InputLow(model, CORNER_MIN).value, 0.8);
    static const struct {
        int which, corner;
        double volts;
    } references[] = {
        {MDL_REF_PULLUP, CORNER_TYP, 3.3},      {MDL_REF_PULLUP, CORNER_MIN, 3.0},
        {MDL_REF_PULLDOWN, CORNER_MAX, 0.0},    {MDL_REF_POWER_CLAMP, CORNER_TYP, 5.0},
        {MDL_REF_POWER_CLAMP, CORNER_MAX, 5.0}, {MDL_REF_GND_CLAMP, CORNER_MIN, -0.1},
    };
    for (const auto& row : references) {
        double volts = 99.0;
        EXPECT_TRUE(MDL_RefVoltage(model, row.which, row.corner, &volts));
        EXPECT_EQ(volts, row.volts);
    }
    const Mdl* bare = MDL_FindByName(root->mdls, "bare");
    ASSERT_NE(bare, nullptr);
    double volts = 99.0;
    EXPECT_FALSE(MDL_RefVoltage(bare, MDL_REF_PULLUP, CORNER_TYP, &volts));
    EXPECT_EQ(volts, 99.0);
    EXPECT_TRUE(MDL_RefVoltage(bare, MDL_REF_GND_CLAMP, CORNER_TYP, &volts));
    EXPECT_EQ(volts, 0.0);
    FINI();
}

GTEST_TEST(Mdl, ExternalModel)
{
    static const char spice[] =
        "[External Model]\nLanguage SPICE\nCorner Typ buf.spi buf_t\n"
        "Ports A_signal_pos A_signal_neg drv ena rcv A_puref A_pdref\n"
        "D_to_A D_drive drv A_pdref 0 1.2 50p 50p Typ\n";
    const std::string open = spice;
    const std::string closed = open + "[End External Model]\n";
    const std::string complete = open +
                                 "D_to_A D_enable ena A_pdref 0 1.2 50p 50p Typ\n"
                                 "A_to_D D_receive rcv A_pdref 0.4 0.8 Typ\n"
                                 "[End External Model]\n";
    const Row rows[] = {
        {"left out", "4.2", "", "E0155@7"},
        {"complete", "4.2", complete.c_str(), ""},
        {"conversions missing", "4.2", closed.c_str(), "E3446@11 E3446@11"},
        {"not closed", "4.2", open.c_str(), "E3440@11 E3446@11 E3446@11"},
        {"end alone", "4.2", "[End External Model]\n", "E3441@6 E0155@8"},
        {"conversion in a digital language", "4.2",
         "[External Model]\nLanguage VHDL-AMS\nCorner Typ buf.vhd buf_t\nPorts A_signal_pos\n"
         "D_to_A D_drive A_signal_pos A_pdref 0 1.2 50p 50p Typ\n[End External Model]\n1\n",
         "E3425@10 E0116@12"},
        {"external reference in use", "4.2",
         "[External Model]\nPorts A_extref\n[End External Model]\n[External Reference] 1 1 1\n",
         ""},
    };
    IbsLog log({{100, 206}, {3425, 3425}, {3440, 3442}, {3446, 3446}});
    CheckRows(&log, rows, "[Model] m\nModel_type I/O_diff\n", Supply);
}

// Lines that the reader would not send.
GTEST_TEST(Mdl, CallsOutOfOrder)
{
    static const struct {
        int (*init)();
        int (*receive)(int kind, int code, char* line);
        int opener;
        int keyword;
        const char* heads[6];  // as SecFrame: no document first, no memory left out
    } sections[] = {
        {MDL_Init,
         MDL_ReceiveLine,
         KEY_MODEL,
         KEY_RAMP,
         {"B0100", "E0102", "E0103", "B0104", "B0105", "B0104"}},
        {SUBMDL_Init,
         SUBMDL_ReceiveLine,
         KEY_SUBMODEL,
         KEY_SUBMDL_RAMP,
         {"B2200", "E2202", "E2203", "B2204", "B2205", "B2204"}},
    };
    for (const auto& section : sections) {
        LogCapture log;
        const auto head = [&log] { return log.Take().substr(0, 5); };
        char line[] = "[X] x";
        EXPECT_EQ(section.init(), 0);
        EXPECT_EQ(head(), section.heads[0]);
        section.receive(LINE_KEYWORD, section.opener, line);
        EXPECT_EQ(head(), section.heads[1]);
        section.receive(LINE_DATA, section.opener, line);
        EXPECT_EQ(head(), section.heads[2]);
        ASSERT_EQ(INIT(), 1);
        EXPECT_EQ(section.init(), 1);
        section.receive(LINE_KEYWORD, section.opener, line);
        section.receive(LINE_KEYWORD, KEY_PIN, line);
        EXPECT_EQ(head(), section.heads[3]);
        section.receive(2, section.opener, line);
        EXPECT_EQ(head(), section.heads[4]);
        section.receive(LINE_DATA, section.keyword, line);
        EXPECT_EQ(head(), section.heads[5]);
        FINI();
    }
}

// A file whose header and keyword table disagree.
GTEST_TEST(Mdl, KeywordOfALaterVersion)
{
    LogCapture log;
    geFileVersion = 2;
    ASSERT_EQ(INIT(), 1);
    MDL_Init();
    char model[] = "[Model] m";
    char spec[] = "[Model Spec]";
    MDL_ReceiveLine(LINE_KEYWORD, KEY_MODEL, model);
    MDL_ReceiveLine(LINE_KEYWORD, KEY_MODEL_SPEC, spec);
    EXPECT_EQ(log.Take(), "E0121 (line    0) - [Model Spec] needs IBIS version 3.0 or later.\n");
    FINI();
}
