// The result of a link as JSON.
#include "quell/link/json.h"

#include "quell/base/json.h"
#include "quell/base/numbers.h"
#include "quell/channel/through.h"

namespace quell {

namespace {

using Json = nlohmann::ordered_json;

using Figure = double ResponseFigures::*;

constexpr struct {
    const char* name;
    Figure figure;
} Figures[] = {
    {"dc_gain", &ResponseFigures::dcGain},
    {"peak", &ResponseFigures::peak},
    {"main_cursor", &ResponseFigures::mainCursor},
    {"crosstalk", &ResponseFigures::crosstalk},
};

Json TreatmentJson(const Treatment& treatment)
{
    Json json;
    json["dc"] = treatment.dc;
    json["dc_from"] = treatment.dcFrom;
    json["band"] =
        treatment.band ? Json({treatment.band->low, treatment.band->high}) : Json(nullptr);
    json["continued_to"] = treatment.continuedTo > 0 ? Json(treatment.continuedTo) : Json(nullptr);
    json["record"] = treatment.record;
    json["delay_removed"] = treatment.delayRemoved;
    return json;
}

// "before" is before the first stage, "after" behind the last.
Json ColumnJson(const LinkResult& result, size_t k)
{
    const Column& column = result.channel->columns[k];
    Json json;
    json["name"] = column.name;
    json["source"] = column.source;
    for (const auto& row : Figures) {
        const std::string name = row.name;
        json[name + "_before"] = result.Before().figures[k].*row.figure;
        json[name + "_after"] =
            result.After() ? Json(result.After()->figures[k].*row.figure) : Json(nullptr);
    }
    json["loss_at_nyquist_db"] = OrNull(column.loss);
    json["delay"] = OrNull(column.delay);
    json["ports"] = column.ports ? Json(PortOrderText(*column.ports)) : Json(nullptr);
    json["ports_from"] = column.ports ? Json(PortSourceText(column.portSource)) : Json(nullptr);
    json["reference"] = OrNull(column.reference);
    json["treatment"] = TreatmentJson(column.treatment);
    return json;
}

Json EyeJson(const LinkEye& eye)
{
    Json json;
    json["ber"] = eye.errorRate;
    json["height"] = eye.height;
    json["width_ui"] = eye.width;
    json["width_ps"] = eye.width * eye.eye.unitInterval * 1e12;
    json["phase"] = eye.phase;
    json["sampling_time"] = eye.samplingTime;
    json["heights"] = Json::object();
    for (size_t k = 0; k < eye.heights.size(); ++k)
        json["heights"][ShortText(EyeErrorRates[k])] = eye.heights[k];
    json["voltage_step"] = eye.eye.voltageStep;
    return json;
}

}  // namespace

nlohmann::ordered_json ResultJson(const LinkResult& result)
{
    const TimeGrid& grid = result.channel->grid;
    Json json;
    json["unit"] = "V/s";
    json["bit_rate"] = grid.bitRate;
    json["samples_per_bit"] = grid.samplesPerBit;
    json["sample_interval"] = grid.Interval();
    const LinkStage& transmitter = result.stages.front();
    json["model"] = transmitter.setup.model.model;
    json["parameters"] = transmitter.setup.model.parameters;
    json["return_code"] = transmitter.ami.returnCode;
    json["message"] = OrNull(transmitter.ami.message);
    json["parameters_out"] = OrNull(transmitter.ami.parametersOut);
    json["model_output"] = transmitter.ami.printed;
    json["peak_distortion_height_before"] = result.Before().height;
    json["peak_distortion_height_after"] =
        result.After() ? Json(result.After()->height) : Json(nullptr);
    json["eye"] = result.eye ? EyeJson(*result.eye) : Json(nullptr);
    json["columns"] = Json::array();
    for (size_t k = 0; k < result.channel->columns.size(); ++k)
        json["columns"].push_back(ColumnJson(result, k));
    json["warnings"] = result.warnings;
    return json;
}

}  // namespace quell
