// [Test Data] and [Test Load] against the document: their models, and each other.
#include <cstddef>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/mdl.h"
#include "IbisParser/nml.h"
#include "IbisParser/store/section.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"
#include "IbisParser/wvfrm.h"

static bool s_isFar(int code)
{
    return code == KEY_RISING_WAVEFORM_FAR || code == KEY_FALLING_WAVEFORM_FAR ||
           code == KEY_DIFF_RISING_WAVEFORM_FAR || code == KEY_DIFF_FALLING_WAVEFORM_FAR;
}

static bool s_hasFarWaveform(const TestData* data)
{
    for (const Wvfrm* waveform : data->waveforms)
        if (waveform != nullptr && s_isFar(waveform->kind)) return true;
    return false;
}

// The model of that name, after a complaint when it is missing or does not drive.
static const Mdl* s_testDriver(const TestData* data, const char* name,
                               const SecNameIndex<Mdl>& models)
{
    if (name[0] == '\0') return nullptr;
    const Mdl* model = models.Find(name);
    if (model == nullptr) {
        ERRLOG_ErrorNew(3815, data->name, name);
        return nullptr;
    }
    const MdlTypeInfo* type = MDL_TypeInfo(model->type);
    if (type != nullptr && !type->drives) ERRLOG_ErrorNew(3816, data->name, name, type->name);
    return model;
}

static void s_testLoad(const TestData* data, const SecNameIndex<TestLoad>& loads)
{
    if (data->load[0] == '\0') return;
    const TestLoad* load = loads.Find(data->load);
    if (load == nullptr) {
        ERRLOG_ErrorNew(3817, data->name, data->load);
        return;
    }
    const char* dataKind = TESTDATA_KindName(data->type);
    const char* loadKind = TESTDATA_KindName(load->type);
    if (dataKind != nullptr && loadKind != nullptr && data->type != load->type)
        ERRLOG_ErrorNew(3818, data->name, dataKind, data->load, loadKind);
    if (s_hasFarWaveform(data) &&
        (load->values[LOAD_TD].state != CELL_NUMBER || load->values[LOAD_ZO].state != CELL_NUMBER))
        ERRLOG_WarnNew(3820, data->name, data->load);
}

int TESTDATA_TestList(TestData* list)
{
    TESTDATA_Close();
    NML_CheckUnique(list, offsetof(TestData, name), offsetof(TestData, next), "Test Data");
    IbisRoot* root = nullptr;
    if (!IBIS_GetIBIS(&root)) return 0;
    const SecNameIndex<Mdl> models(root->mdls);
    const SecNameIndex<TestLoad> loads(root->testLoads);
    for (const TestData* data : SecFileOrder<TestData>(list)) {
        const PlaceScope at(SUBJECT_TEST_DATA, data);
        const Mdl* driver = s_testDriver(data, data->driver, models);
        const Mdl* inverse = s_testDriver(data, data->driverInv, models);
        if (driver != nullptr && inverse != nullptr && driver->type != inverse->type)
            ERRLOG_WarnNew(3819, data->name, data->driver, data->driverInv);
        s_testLoad(data, loads);
        for (const Wvfrm* waveform : data->waveforms)
            for (; waveform != nullptr; waveform = waveform->next)
                WVFRM_Check(waveform);
    }
    return 1;
}

// The model of that name, after a complaint when it is missing or takes no signal.
static const Mdl* s_testReceiver(const TestLoad* load, const char* name,
                                 const SecNameIndex<Mdl>& models)
{
    if (name[0] == '\0') return nullptr;
    const Mdl* model = models.Find(name);
    if (model == nullptr) {
        ERRLOG_ErrorNew(4018, load->name, name);
        return nullptr;
    }
    const MdlTypeInfo* type = MDL_TypeInfo(model->type);
    if (type != nullptr && !type->receives && type->type != MDL_TERMINATOR)
        ERRLOG_ErrorNew(4019, load->name, name, type->name);
    return model;
}

int TESTLOAD_TestList(TestLoad* list)
{
    TESTLOAD_Close();
    NML_CheckUnique(list, offsetof(TestLoad, name), offsetof(TestLoad, next), "Test Load");
    IbisRoot* root = nullptr;
    if (!IBIS_GetIBIS(&root)) return 0;
    const SecNameIndex<Mdl> models(root->mdls);
    SecSet used;
    for (const TestData* data = root->testData; data != nullptr; data = data->next)
        SEC_SetAdd(&used, data->load);
    for (const TestLoad* load : SecFileOrder<TestLoad>(list)) {
        const PlaceScope at(SUBJECT_TEST_LOAD, load);
        const Mdl* receiver = s_testReceiver(load, load->receiver, models);
        const Mdl* inverse = s_testReceiver(load, load->receiverInv, models);
        if (!SEC_SetHas(&used, load->name)) ERRLOG_WarnNew(4020, load->name);
        if (receiver != nullptr && inverse != nullptr && receiver->type != inverse->type)
            ERRLOG_WarnNew(4021, load->name, load->receiver, load->receiverInv);
        if (load->receiver[0] == '\0' && load->receiverInv[0] != '\0')
            ERRLOG_WarnNew(4022, load->name);
    }
    return 1;
}
