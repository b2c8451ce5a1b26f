#include "material/document.h"

#include "base/fileio.h"
#include "base/messages.h"
#include "material/libraryexport.h"

namespace zelko {

namespace {

// Undo keeps this many materials; each is a whole copy, curves included.
constexpr std::size_t kUndoDepth = 20;

}  // namespace

std::string materialFileBytes(const Project& material)
{
    TextWriter out(TextEncoding::Utf16Le);
    material.WriteMaterialFile(out);
    return std::move(out).bytes();
}

namespace {

bool readMaterialText(TextReader& in, Project& material, FileVersion& version, std::vector<std::string>* warnings)
{
    // Read into a copy: a rejected file must leave the material as it was, and the
    // reader only promises that for the rejections of its first lines.
    Project read = material;
    FileVersion fileVersion;
    bool endedEarly = false;
    if (!read.ReadMaterialFile(in, &fileVersion, &endedEarly))
        return false;
    material = std::move(read);
    version = fileVersion;
    if (warnings) {
        warnings->clear();
        if (endedEarly)
            warnings->emplace_back(messageText(MessageCode::MaterialFileEndsEarly));
    }
    return true;
}

}  // namespace

bool readMaterialBytes(std::string_view bytes, Project& material, FileVersion& version,
                       std::vector<std::string>* warnings)
{
    TextReader in(bytes, ReadMode::SniffBom);
    return readMaterialText(in, material, version, warnings);
}

LibraryEntry libraryEntryBytes(const Project& material)
{
    TextWriter out(TextEncoding::EightBit);
    LibraryEntry entry;
    entry.hasModelBlock = writeLibraryEntry(material, out);
    entry.bytes = out.bytes();
    return entry;
}

std::string missingModelBlockWarning(const Plastic& model)
{
    return formatMessage(MessageCode::ModelWroteNoBlock, model.modelKind == HotModel ? "hot" : "cold", model.modelNumber);
}

MaterialDocument::MaterialDocument(Environment environment) : environment_(std::move(environment)) {}

bool MaterialDocument::open(const std::filesystem::path& path, std::string& error)
{
    std::optional<TextReader> in = readTextFile(path, ReadMode::SniffBom, error, kMaxMaterialFileBytes);
    if (!in)
        return false;
    if (!readMaterialText(*in, material_, version_, &warnings_)) {
        error = messageText(MessageCode::NotAMaterialFile);
        return false;
    }
    forgetHistory();
    return true;
}

void MaterialDocument::forgetHistory()
{
    undo_.clear();
    redo_.clear();
    modified_ = false;
    lastCommitWasTitle_ = false;
}

bool MaterialDocument::save(const std::filesystem::path& path, std::string& error) const
{
    PendingOutputs outputs;
    if (!save(outputs, path, error) || !outputs.commit(error))
        return false;
    modified_ = false;
    return true;
}

bool MaterialDocument::exportLibrary(const std::filesystem::path& path, bool& wroteModelBlock, std::string& error) const
{
    PendingOutputs outputs;
    bool withBlock = false;
    if (!exportLibrary(outputs, path, withBlock, error) || !outputs.commit(error))
        return false;
    wroteModelBlock = withBlock;
    return true;
}

bool MaterialDocument::save(PendingOutputs& outputs, const std::filesystem::path& path, std::string& error) const
{
    // Written as it is formatted: a material of a long curve is several times its
    // text, and holding it whole doubled a save's memory.
    if (!outputs.beginStream(path, error))
        return false;
    std::size_t size = 0;
    TextWriter out(TextEncoding::Utf16Le);
    out.streamTo([&](std::string_view piece) {
        size += piece.size();
        // Past the reader's limit nothing more is written, only counted for the message.
        if (size <= kMaxMaterialFileBytes)
            outputs.write(piece);  // a failed write is told by endStream
    });
    material_.WriteMaterialFile(out);
    out.finish();
    if (size > kMaxMaterialFileBytes) {
        outputs.withdraw();
        constexpr double kMegabyte = 1024.0 * 1024.0;
        error = formatMessage(MessageCode::MaterialTooLargeToRead, static_cast<double>(size) / kMegabyte,
                              static_cast<double>(kMaxMaterialFileBytes) / kMegabyte);
        return false;
    }
    return outputs.endStream(error);
}

bool MaterialDocument::exportLibrary(PendingOutputs& outputs, const std::filesystem::path& path, bool& wroteModelBlock,
                                     std::string& error) const
{
    const std::shared_ptr<Plastic> model = material_.libraryModel();
    if (!model) {
        error = messageText(MessageCode::NoFlowStressModel);
        return false;
    }
    const LibraryEntry entry = libraryEntryBytes(material_);
    if (!outputs.stage(path, entry.bytes, error))
        return false;
    wroteModelBlock = entry.hasModelBlock;
    return true;
}

void MaterialDocument::commit(Project edited)
{
    undo_.push_back(std::move(material_));
    if (undo_.size() > kUndoDepth)
        undo_.erase(undo_.begin());
    redo_.clear();
    material_ = std::move(edited);
    modified_ = true;
    lastCommitWasTitle_ = false;
}

void MaterialDocument::setTitle(std::u16string title)
{
    if (title == material_.title)
        return;
    if (lastCommitWasTitle_ && !undo_.empty()) {
        material_.title = std::move(title);
        modified_ = true;
        return;
    }
    Project edited = material_;
    edited.title = std::move(title);
    commit(std::move(edited));
    lastCommitWasTitle_ = true;
}

void MaterialDocument::close()
{
    material_ = Project();
    version_ = FileVersion{};
    warnings_.clear();
    forgetHistory();
}

void MaterialDocument::step(std::vector<Project>& from, std::vector<Project>& to)
{
    if (from.empty())
        return;
    to.push_back(std::move(material_));
    material_ = std::move(from.back());
    from.pop_back();
    modified_ = true;
    lastCommitWasTitle_ = false;
}

void MaterialDocument::undo() { step(undo_, redo_); }

void MaterialDocument::redo() { step(redo_, undo_); }

}  // namespace zelko
