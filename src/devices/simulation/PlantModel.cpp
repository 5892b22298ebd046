#include "devices/simulation/PlantModel.h"

#include "platform/Clock.h"
#include "platform/LocalTime.h"

#include <array>
#include <cmath>

namespace zr {
namespace {

using Kind = modbus::Verdict::Kind;

constexpr std::string_view kHelp =
    "commands: fault DEVICE|all mute|doubled|corrupt|cut [PROBABILITY], fault DEVICE|all late [MILLISECONDS "
    "[PROBABILITY]], fault DEVICE|all none, help";
constexpr std::string_view kFaultCommand = "fault";

}  // namespace

bool PlantModel::Load(const std::filesystem::path& file, const PlantOptions& options, std::string& error)
{
    if (!m_description.Load(file, error) || !m_series.Load(m_description.series, error)) {
        return false;
    }
    if (!(options.speed >= 0.0 && options.speed <= PlantOptions::kMaxSpeed)) {
        error = "the speed must be 0 to 1000000";
        return false;
    }
    m_speed = options.speed;
    return LoadDevices(options.seed, error) && SetStart(options, error) && SetFaults(options, error) &&
           (!options.truth || m_truth.Open(*options.truth, error));
}

bool PlantModel::LoadDevices(std::uint64_t seed, std::string& error)
{
    std::map<std::string, std::shared_ptr<const modbus::DeviceProfile>> profiles;
    for (const PlantLine& description : m_description.lines) {
        Line line;
        for (const PlantDevice& device : description.devices) {
            const std::string place = m_description.file + ":" + std::to_string(device.fileLine) + ": ";
            auto& profile = profiles[device.profile];
            std::string reason;
            if (profile == nullptr) {
                profile = modbus::DeviceProfile::Load(m_description.profileFolder / (device.profile + ".xml"), reason);
            }
            if (profile == nullptr) {
                error = place + "profile of " + device.name + ": " + reason;
                return false;
            }
            if (line.devices.empty()) {
                line.framing = profile->FrameForm();
            }
            const bool isSerial = description.kind == PlantLine::Kind::Serial;
            if (profile->FrameForm() != line.framing || (isSerial && line.framing != modbus::Framing::Rtu)) {
                error = place + "the framing of " + device.profile + " doesn't suit the line " + description.name;
                return false;
            }
            line.devices.push_back(std::make_unique<SimulatedDevice>(device, profile, m_series, seed));
            for (const std::string& variable : line.devices.back()->Unknown()) {
                m_warnings.push_back(place + device.name + "." + variable +
                                     " reads as 0: the plant has nothing for it");
            }
        }
        m_lines.push_back(std::move(line));
    }
    return true;
}

bool PlantModel::SetStart(const PlantOptions& options, std::string& error)
{
    m_startTime = CurrentClock().Steady();
    if (!options.start.empty()) {
        const auto position = m_series.Find(options.start);
        if (!position) {
            error = "there is no row of the time \"" + options.start + "\" in " + m_description.series.string();
            return false;
        }
        m_startPosition = *position;
        return true;
    }
    LocalTime now;
    ToLocalTime(CurrentClock().Utc(), now);
    m_startPosition = m_series.FindTimeOfDay(now.hour * 3600.0 + now.minute * 60.0 + now.second);
    return true;
}

bool PlantModel::SetFaults(const PlantOptions& options, std::string& error)
{
    for (const FaultOrder& order : m_description.faults) {
        if (!Apply(order, error)) {
            return false;
        }
    }
    for (const std::string& text : options.faults) {
        FaultOrder order;
        std::string reason;
        if (!ParseFaultOrder(text, order, reason) || !Apply(order, reason)) {
            error = "fault \"" + text + "\": " + reason;
            return false;
        }
    }
    return true;
}

bool PlantModel::Apply(const FaultOrder& order, std::string& error)
{
    bool found = false;
    for (const Line& line : m_lines) {
        for (const auto& device : line.devices) {
            if (order.target != "all" && order.target != device->Name()) {
                continue;
            }
            found = true;
            if (order.fault) {
                device->Faults().Set(*order.fault);
            } else {
                device->Faults().Clear();
            }
        }
    }
    if (!found) {
        error = "there is no device \"" + order.target + "\"";
    }
    return found;
}

double PlantModel::Position() const
{
    const std::chrono::duration<double, std::ratio<60>> passed = CurrentClock().Steady() - m_startTime;
    return m_startPosition + passed.count() * m_speed;
}

SimulatedDevice* PlantModel::Find(std::string_view device)
{
    for (const Line& line : m_lines) {
        for (const auto& candidate : line.devices) {
            if (candidate->Name() == device) {
                return candidate.get();
            }
        }
    }
    return nullptr;
}

std::vector<Delivery> PlantModel::AnswerDatagram(std::size_t line, std::span<const std::uint8_t> datagram)
{
    std::vector<Delivery> deliveries;
    const modbus::ReceivedRequest received = modbus::ParseRequest(m_lines[line].framing, datagram);
    if (received.verdict.kind == Kind::Accept && received.verdict.size == datagram.size()) {
        Answer(m_lines[line], received, deliveries);
    }
    return deliveries;
}

std::vector<Delivery> PlantModel::AnswerStream(std::size_t line, std::vector<std::uint8_t>& bytes)
{
    std::vector<Delivery> deliveries;
    while (!bytes.empty()) {
        const modbus::ReceivedRequest received = modbus::ParseRequest(m_lines[line].framing, bytes);
        if (received.verdict.kind == Kind::NeedMore) {
            break;
        }
        if (received.verdict.kind == Kind::Accept) {
            Answer(m_lines[line], received, deliveries);
        }
        bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(received.verdict.size));
    }
    return deliveries;
}

void PlantModel::Answer(Line& line, const modbus::ReceivedRequest& received, std::vector<Delivery>& deliveries)
{
    const modbus::Request& request = received.request;
    for (const auto& device : line.devices) {
        if (request.unit == 0 && !modbus::IsReadFunction(request.function)) {
            device->Answer(request, Position());  // a broadcast: done by all, answered by none
        }
        if (request.unit == device->Unit()) {
            AnswerFrom(*device, line, request, deliveries);
        }
    }
}

void PlantModel::AnswerFrom(SimulatedDevice& device, const Line& line, const modbus::Request& request,
                            std::vector<Delivery>& deliveries)
{
    const auto now = CurrentClock().Utc();
    if (device.Faults().MissesRequest()) {
        return;
    }
    const DeviceReply reply = device.Answer(request, Position());
    std::array<std::uint8_t, modbus::kMaxFrame> frame = {};
    const std::size_t size = reply.exception == modbus::Exception::None
                                 ? modbus::EncodeReply(line.framing, request, reply.data, frame)
                                 : modbus::EncodeException(line.framing, request, reply.exception, frame);
    if (size < 2) {
        return;
    }
    ++m_replies;
    std::string fate;
    const std::vector<Delivery> faulty = device.Faults().Apply(std::span(frame).first(size), fate);
    m_truth.Write(now, reply.values, modbus::IsReadFunction(request.function) ? fate : "set");
    deliveries.insert(deliveries.end(), faulty.begin(), faulty.end());
}

bool PlantModel::Command(std::string_view text, std::string& answer)
{
    if (text == "help") {
        answer = kHelp;
        return true;
    }
    if (!text.starts_with(kFaultCommand) || text.size() == kFaultCommand.size() ||
        (text[kFaultCommand.size()] != ' ' && text[kFaultCommand.size()] != '\t')) {
        answer = "not understood; " + std::string(kHelp);
        return false;
    }
    FaultOrder order;
    std::string reason;
    if (!ParseFaultOrder(text.substr(kFaultCommand.size()), order, reason) || !Apply(order, reason)) {
        answer = reason;
        return false;
    }
    answer = text;
    return true;
}

}  // namespace zr
