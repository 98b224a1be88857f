// The result of a link as JSON.
#include "quell/link/json.h"

#include "quell/base/numbers.h"
#include "quell/channel/through.h"

namespace quell {

namespace {

using Json = nlohmann::ordered_json;

template <typename T>
Json OrNull(const std::optional<T>& value)
{
    return value ? Json(*value) : Json(nullptr);
}

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

Json ColumnJson(const LinkColumn& column)
{
    Json json;
    json["name"] = column.channel.name;
    json["source"] = column.channel.source;
    for (const auto& row : Figures) {
        const std::string name = row.name;
        json[name + "_before"] = column.before.*row.figure;
        json[name + "_after"] = column.after ? Json((*column.after).*row.figure) : Json(nullptr);
    }
    json["loss_at_nyquist_db"] = OrNull(column.channel.loss);
    json["delay"] = OrNull(column.channel.delay);
    json["ports"] =
        column.channel.ports ? Json(PortOrderText(*column.channel.ports)) : Json(nullptr);
    json["reference"] = OrNull(column.channel.reference);
    return json;
}

Json EyeJson(const LinkEye& eye)
{
    Json json;
    json["ber"] = eye.errorRate;
    json["height"] = eye.height;
    json["width_ui"] = eye.width;
    json["phase"] = eye.phase;
    json["heights"] = Json::object();
    for (size_t k = 0; k < eye.heights.size(); ++k)
        json["heights"][ShortText(EyeErrorRates[k])] = eye.heights[k];
    json["voltage_step"] = eye.eye.voltageStep;
    return json;
}

}  // namespace

nlohmann::ordered_json ResultJson(const LinkResult& result, const std::optional<LinkEye>& eye)
{
    Json json;
    json["unit"] = "V/s";
    json["bit_rate"] = result.grid.bitRate;
    json["samples_per_bit"] = result.grid.samplesPerBit;
    json["sample_interval"] = result.grid.Interval();
    json["model"] = result.model.model;
    json["parameters"] = result.model.parameters;
    json["return_code"] = result.ami.returnCode;
    json["message"] = OrNull(result.ami.message);
    json["parameters_out"] = OrNull(result.ami.parametersOut);
    json["model_output"] = result.ami.printed;
    json["peak_distortion_height_before"] = result.heightBefore;
    json["peak_distortion_height_after"] = OrNull(result.heightAfter);
    json["eye"] = eye ? EyeJson(*eye) : Json(nullptr);
    json["columns"] = Json::array();
    for (const LinkColumn& column : result.columns)
        json["columns"].push_back(ColumnJson(column));
    json["warnings"] = result.warnings;
    return json;
}

}  // namespace quell
