# Writes a source file that contains the description fragments as raw string literals:
# cmake -D FRAGMENTS=a.xml;b.xml -D OUTPUT=file.cpp -P EmbedFragments.cmake
set(literals "")
foreach(file IN LISTS FRAGMENTS)
    file(READ ${file} text)
    string(APPEND literals "R\"xml(${text})xml\",\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"cameralibs/devices/simulated/SimulatedDescription.h\"

namespace cameralibs::simulated {

const std::vector<std::string_view>& descriptionFragments()
{
    static const std::vector<std::string_view> kFragments{
${literals}};
    return kFragments;
}

} // namespace cameralibs::simulated
")
