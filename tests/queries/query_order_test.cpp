// What every entry point asks the buffer library, in order, and where each
// refusal stops asking: OVC_Convert, the 81 demosaic routines,
// OVC_FieldToFrame and its method routines, and the file writers. The
// program is its own buffer library: it logs every query; each fake buffer
// answers from its table (silent for ids it lacks) with a status to ignore.
#include "bayer/member_table.h"
#include "support/scratch.h"

#include <orvaneimage.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>

namespace {

using orv::bayer::DemosaicMember;
using Log = std::vector<std::string>;

Log query_log; // "name:id", in call order

struct FakeBuffer {
    std::string name;
    std::map<uint32_t, uint64_t> values; // id -> value; missing ids stay silent
    ORV_STATUS status = ORV_OK;          // what every query returns

    OFS_HANDLE handle() const { return reinterpret_cast<OFS_HANDLE>(this); }
};

} // namespace

extern "C" ORV_API ORV_STATUS OFS_BufferParameterGet(OFS_HANDLE buffer, uint32_t id,
                                                     void *value) {
    const auto *fake = reinterpret_cast<const FakeBuffer *>(buffer);
    query_log.push_back(fake->name + ":" + std::to_string(id));
    const auto it = fake->values.find(id);
    if (it == fake->values.end()) return fake->status;
    // The address and the validity are pointer-sized, the rest 32-bit.
    if (id == OFS_START_ADDR || id == OFS_BUFFER_VALID)
        *static_cast<uintptr_t *>(value) = uintptr_t(it->second);
    else
        *static_cast<uint32_t *>(value) = uint32_t(it->second);
    return fake->status;
}

namespace {

enum class Entry { convert, demosaic, field_to_frame, file_writer };

// The two valid buffers of each entry point (the file writers use the first).
struct Scene {
    const char *names[2];
    uint32_t format[2], width[2], height[2], stride[2];
};
const Scene kScenes[] = {
    {{"src", "dst"}, {ORV_FORMAT_Y8, ORV_FORMAT_BGR24}, {4, 4}, {2, 2}, {4, 12}},
    {{"src", "dst"}, {ORV_FORMAT_BAY8, ORV_FORMAT_BGRX32}, {4, 4}, {4, 4}, {8, 16}},
    {{"field", "frame"}, {ORV_FORMAT_Y8, ORV_FORMAT_Y8}, {4, 4}, {2, 4}, {4, 4}},
    {{"b", "unused"}, {ORV_FORMAT_Y8, ORV_FORMAT_Y8}, {4, 4}, {2, 2}, {4, 4}},
};

// A call of the entry point; demosaic rows are run for every member.
using Call = std::function<ORV_STATUS(OFS_HANDLE, OFS_HANDLE, const DemosaicMember &)>;

ORV_STATUS convert(OFS_HANDLE s, OFS_HANDLE d, const DemosaicMember &) { return OVC_Convert(s, d); }
Call demosaic(uint32_t depth) {
    return [depth](auto s, auto d, const DemosaicMember &m) { return m.call(s, d, depth); };
}
Call dispatch(uint32_t method) {
    return [method](auto f, auto g, auto &) { return OVC_FieldToFrame(f, g, method, 1); };
}
Call routine(ORV_STATUS (*method)(OFS_HANDLE, OFS_HANDLE, uint32_t)) {
    return [method](auto f, auto g, auto &) { return method(f, g, 1); };
}
// A file type for OVC_FileWrite, or 0 for OVC_FileWriteTiff itself.
Call file(uint32_t type) {
    return [type](OFS_HANDLE b, OFS_HANDLE, const DemosaicMember &) {
        const std::string path = orv_test::scratch_path("order.bin");
        return type ? OVC_FileWrite(b, path.c_str(), type) : OVC_FileWriteTiff(b, path.c_str());
    };
}

// The first `n` queries of a space-separated order, or all of them.
Log asked(const std::string &order, size_t n = SIZE_MAX) {
    std::istringstream words(order);
    Log log;
    for (std::string word; log.size() < n && words >> word;) log.push_back(word);
    return log;
}

const std::string kConvert = "src:11 dst:11 dst:7 src:7 src:3 dst:3 src:4 dst:4 src:2 dst:2 src:1 dst:1 src:9 src:10";
const std::string kDemosaic = "src:11 dst:11 src:3 src:4 dst:4 dst:3 src:2 src:1";
// The field routines' own checks, then the geometry of both buffers.
const std::string kChecks = " field:11 frame:11 field:3 frame:3";
const std::string kGeometry = " field:4 frame:4 field:2 frame:2 field:1 frame:1";

using Spoil = std::function<void(FakeBuffer &, FakeBuffer &)>;
const Spoil keep = [](FakeBuffer &, FakeBuffer &) {};
Spoil erase(int which, uint32_t id) {
    return [=](FakeBuffer &a, FakeBuffer &b) { (which == 0 ? a : b).values.erase(id); };
}
Spoil set(int which, uint32_t id, uint64_t value) {
    return [=](FakeBuffer &a, FakeBuffer &b) { (which == 0 ? a : b).values[id] = value; };
}
Spoil query_status(ORV_STATUS status) {
    return [=](FakeBuffer &a, FakeBuffer &b) { a.status = b.status = status; };
}

struct Row {
    Entry entry;
    const char *what;
    Call call;
    Spoil spoil;
    ORV_STATUS status;
    Log expected;
    bool word_mosaics_only = false;
};

const Row kRows[] = {
    {Entry::convert, "success", convert, keep, ORV_OK, asked(kConvert)},
    {Entry::convert, "source validity silent", convert, erase(0, OFS_BUFFER_VALID), ORV_ERROR_BAD_PARAM, asked(kConvert, 1)},
    {Entry::convert, "source invalid", convert, set(0, OFS_BUFFER_VALID, 0), ORV_ERROR_BAD_PARAM, asked(kConvert, 1)},
    {Entry::convert, "destination validity silent", convert, erase(1, OFS_BUFFER_VALID), ORV_ERROR_BAD_PARAM, asked(kConvert, 2)},
    {Entry::convert, "destination format zero", convert, set(1, OFS_FORMAT, 0), ORV_ERROR_BAD_PARAM, asked(kConvert, 3)},
    {Entry::convert, "source format zero", convert, set(0, OFS_FORMAT, 0), ORV_ERROR_BAD_PARAM, asked(kConvert, 4)},
    {Entry::convert, "source address null", convert, set(0, OFS_START_ADDR, 0), ORV_ERROR_BAD_PARAM, asked(kConvert, 5)},
    {Entry::convert, "destination address null", convert, set(1, OFS_START_ADDR, 0), ORV_ERROR_BAD_PARAM, asked(kConvert, 6)},
    {Entry::convert, "pair not converted", convert, set(1, OFS_FORMAT, ORV_FORMAT_Y12P), ORV_ERROR_NOT_SUPPORTED, asked(kConvert)},
    {Entry::convert, "too small", convert, set(1, OFS_STRIDE, 5), ORV_ERROR_BAD_PARAM, asked(kConvert)},
    // A Bayer source is queried no further by the routing itself.
    {Entry::convert, "Bayer method refused", convert, set(0, OFS_FORMAT, ORV_FORMAT_BAY8), ORV_ERROR_NOT_IMPLEMENTED, asked(kConvert)},
    {Entry::convert, "queries report failure", convert, query_status(99), ORV_OK, asked(kConvert)},

    {Entry::demosaic, "success", demosaic(12), keep, ORV_OK, asked(kDemosaic)},
    {Entry::demosaic, "source validity silent", demosaic(12), erase(0, OFS_BUFFER_VALID), ORV_ERROR_BAD_PARAM, asked(kDemosaic, 1)},
    {Entry::demosaic, "source invalid", demosaic(12), set(0, OFS_BUFFER_VALID, 0), ORV_ERROR_BAD_PARAM, asked(kDemosaic, 1)},
    {Entry::demosaic, "destination invalid", demosaic(12), set(1, OFS_BUFFER_VALID, 0), ORV_ERROR_BAD_PARAM, asked(kDemosaic, 2)},
    {Entry::demosaic, "depth 8", demosaic(8), keep, ORV_ERROR_BAD_PARAM, asked(kDemosaic, 2), true},
    {Entry::demosaic, "queries report failure", demosaic(12), query_status(99), ORV_OK, asked(kDemosaic)},
    // The destination's width, height and format are never asked.
    {Entry::demosaic, "destination geometry unused", demosaic(12),
     [](FakeBuffer &, FakeBuffer &d) { d.values[OFS_WIDTH] = d.values[OFS_HEIGHT] = d.values[OFS_FORMAT] = 0; },
     ORV_OK, asked(kDemosaic)},

    {Entry::field_to_frame, "LineDup", dispatch(OVC_FIELD_LINEDUP), keep, ORV_OK, asked("field:11 frame:11" + kChecks + kGeometry)},
    {Entry::field_to_frame, "LineAve", dispatch(OVC_FIELD_LINEAVE), keep, ORV_OK, asked("field:11 frame:11" + kChecks + kGeometry)},
    {Entry::field_to_frame, "Bilinear", dispatch(OVC_FIELD_BILINEAR), keep, ORV_OK, asked("field:11 frame:11" + kChecks + " field:7" + kGeometry)},
    {Entry::field_to_frame, "Median", dispatch(OVC_FIELD_MEDIAN), keep, ORV_OK, asked("field:11 frame:11" + kChecks + " field:7" + kGeometry)},
    {Entry::field_to_frame, "silent field validity", routine(OVC_FieldToFrame_Median), erase(0, OFS_BUFFER_VALID), ORV_ERROR_BAD_PARAM, asked("field:11")},
    {Entry::field_to_frame, "dispatcher, frame invalid", dispatch(OVC_FIELD_LINEDUP), set(1, OFS_BUFFER_VALID, 0), ORV_ERROR_BAD_PARAM, asked("field:11 frame:11")},
    {Entry::field_to_frame, "dispatcher, method 4", dispatch(4), keep, ORV_ERROR_NOT_SUPPORTED, asked("field:11 frame:11")},
    {Entry::field_to_frame, "routine, frame validity silent goes on", routine(OVC_FieldToFrame_Bilinear), erase(1, OFS_BUFFER_VALID), ORV_OK, asked(kChecks + " field:7" + kGeometry)},
    {Entry::field_to_frame, "field address null", routine(OVC_FieldToFrame_LineAve), set(0, OFS_START_ADDR, 0), ORV_ERROR_BAD_PARAM, asked(kChecks, 3)},
    {Entry::field_to_frame, "frame address null", routine(OVC_FieldToFrame_Median), set(1, OFS_START_ADDR, 0), ORV_ERROR_BAD_PARAM, asked(kChecks)},
    {Entry::field_to_frame, "format zero", routine(OVC_FieldToFrame_Bilinear), set(0, OFS_FORMAT, 0), ORV_ERROR_BAD_PARAM, asked(kChecks + " field:7")},
    {Entry::field_to_frame, "format not laid out", routine(OVC_FieldToFrame_Median), set(0, OFS_FORMAT, ORV_FORMAT_Y16), ORV_ERROR_NOT_SUPPORTED, asked(kChecks + " field:7" + kGeometry)},
    {Entry::field_to_frame, "frame too small", routine(OVC_FieldToFrame_LineDup), set(1, OFS_HEIGHT, 3), ORV_ERROR_BAD_PARAM, asked(kChecks + kGeometry)},

    {Entry::file_writer, "raw", file(OVC_FILE_RAW), keep, ORV_OK, asked("b:11 b:3 b:2 b:4")},
    // The raw writer's success is the buffer library's answer to the
    // stride query.
    {Entry::file_writer, "raw, queries report 42", file(OVC_FILE_RAW), query_status(42), 42, asked("b:11 b:3 b:2 b:4")},
    {Entry::file_writer, "raw, validity silent", file(OVC_FILE_RAW), erase(0, OFS_BUFFER_VALID), ORV_ERROR_BAD_PARAM, asked("b:11")},
    {Entry::file_writer, "tiff through OVC_FileWrite", file(OVC_FILE_TIFF), keep, ORV_OK, asked("b:11 b:11 b:7 b:3 b:2 b:1 b:4")},
    {Entry::file_writer, "OVC_FileWriteTiff", file(0), keep, ORV_OK, asked("b:11 b:7 b:3 b:2 b:1 b:4")},
    {Entry::file_writer, "tiff, validity silent", file(0), erase(0, OFS_BUFFER_VALID), ORV_ERROR_BAD_PARAM, asked("b:11")},
    {Entry::file_writer, "unknown type", file(7), keep, ORV_ERROR_NOT_SUPPORTED, asked("b:11")},
};

TEST(QueryOrder, EveryEntryAsksInOrderAndStopsAtTheFirstRefusal) {
    for (const Row &row : kRows) {
        const bool every_member = row.entry == Entry::demosaic;
        for (const DemosaicMember &m : orv::bayer::kDemosaicMembers) {
            if (row.word_mosaics_only && !m.n_bit) continue;
            const Scene &scene = kScenes[int(row.entry)];
            uint8_t memory[2][64] = {};
            FakeBuffer buffers[2];
            for (int i = 0; i < 2; ++i) // answering every id of the image routines
                buffers[i] = {scene.names[i],
                              {{OFS_BUFFER_VALID, 1}, {OFS_START_ADDR, uintptr_t(memory[i])},
                               {OFS_FORMAT, scene.format[i]}, {OFS_WIDTH, scene.width[i]},
                               {OFS_HEIGHT, scene.height[i]}, {OFS_STRIDE, scene.stride[i]},
                               {OFS_BAYER_METHOD, 0}, {OFS_BAYER_PHASE, 0}}};
            row.spoil(buffers[0], buffers[1]);
            query_log.clear();
            EXPECT_EQ(row.call(buffers[0].handle(), buffers[1].handle(), m), row.status)
                << row.what << (every_member ? m.name : "");
            EXPECT_EQ(query_log, row.expected) << row.what << (every_member ? m.name : "");
            if (!every_member) break;
        }
    }
}

} // namespace
