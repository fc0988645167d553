#include "benchmarks/opening/MakerDescription.h"

#include <array>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t kFeaturesPerCategory = 20;

/// A line <name>text</name>.
std::string tag(std::string_view name, const std::string& text)
{
    const std::string bracketed = std::string(name) + '>';
    return "    <" + bracketed + text + "</" + bracketed + '\n';
}

std::string variable(const std::string& name, const std::string& node)
{
    return "    <pVariable Name=\"" + name + "\">" + node + "</pVariable>\n";
}

std::string opened(std::string_view element, const std::string& name)
{
    return '<' + std::string(element) + " Name=\"" + name + "\" NameSpace=\"Custom\">\n";
}

std::string hexadecimal(std::size_t number)
{
    std::string text;
    for (; number > 0; number /= 16)
        text.insert(text.begin(), "0123456789ABCDEF"[number % 16]);
    return "0x" + text;
}

std::string featureName(std::size_t number)
{
    return "SensorFeature" + std::to_string(number);
}

/// Generates the features one by one, each with the nodes that it depends on.
class Maker {
public:
    explicit Maker(std::size_t features)
        : m_features(features)
    {
        constant("TransferLocked", 0);
        node("Port", "Device", tag("ToolTip", "The registers of the camera"));
    }

    void addFeature(std::size_t number)
    {
        using Recipe = void (Maker::*)();
        static constexpr std::array<Recipe, 18> kRecipes = {
            &Maker::selector, &Maker::limited,  &Maker::limited,   &Maker::selected, &Maker::converted, &Maker::boolean,
            &Maker::limited,  &Maker::selected, &Maker::command,   &Maker::choice,   &Maker::limited,   &Maker::limited,
            &Maker::halved,   &Maker::selected, &Maker::converted, &Maker::floating, &Maker::scaled,    &Maker::text,
        };
        m_number = number;
        m_name = featureName(number);
        (this->*kRecipes[number % kRecipes.size()])();
    }

    [[nodiscard]] const std::string& nodes() const { return m_nodes; }

private:
    // The kinds of feature.

    void selector()
    {
        m_selector = m_name;
        std::string selected;
        for (const std::size_t distance : {3U, 7U, 13U}) { // distances to the selected features
            if (m_number + distance < m_features)
                selected += tag("pSelected", featureName(m_number + distance));
        }
        enumeration(selected);
    }

    void choice() { enumeration({}); }

    void enumeration(const std::string& selected)
    {
        std::string entries;
        int value = 0;
        for (const char* const entry : {"Off", "Once", "Continuous", "Line0", "Line1", "SoftwareSignal"}) {
            entries += "    " + opened("EnumEntry", "EnumEntry_" + m_name + '_' + entry) +
                       tag("ToolTip", std::string("The entry ") + entry) +
                       tag("Description", std::string("Chooses ") + entry + " for " + m_name + " of the sensor.") +
                       tag("DisplayName", entry) + tag("Value", std::to_string(value++)) + "    </EnumEntry>\n";
        }
        node("Enumeration", m_name,
             description() + tag("pIsAvailable", part("Available")) + tag("pIsLocked", "TransferLocked") + entries +
                 tag("pValue", part("Register")) + selected);
        maskedRegister(0, 7);
        node("IntSwissKnife", part("Available"),
             variable("INQUIRY", part("Inquiry")) + tag("Formula", "(INQUIRY &amp; 0x80000000) ? 0 : 1"));
        constant(part("Inquiry"), 0);
    }

    void limited()
    {
        node("Integer", m_name,
             description() + tag("pIsLocked", "TransferLocked") + tag("pValue", part("Register")) +
                 tag("pMin", part("Min")) + tag("pMax", part("Max")) + tag("Inc", "1") +
                 tag("Representation", "Linear"));
        integerRegister();
        constant(part("Min"), 0);
        constant(part("Max"), 4095);
    }

    void selected()
    {
        node("Integer", m_name,
             description() + tag("pInvalidator", m_selector) + tag("pIsAvailable", part("Available")) +
                 tag("pValue", part("Register")) + tag("Min", "0") + tag("pMax", part("Max")));
        node("IntReg", part("Register"),
             tag("pInvalidator", m_selector) + place(64, 4) + tag("pAddress", part("Offset")) + kUnsigned);
        node("IntSwissKnife", part("Offset"), variable("SELECTED", m_selector) + tag("Formula", "SELECTED * 4"));
        node("IntSwissKnife", part("Available"),
             variable("SELECTED", m_selector) + tag("Formula", "(SELECTED &lt; 6) &amp;&amp; (SELECTED &gt;= 0)"));
        constant(part("Max"), 255);
    }

    void converted()
    {
        node("Float", m_name,
             description() + tag("pIsLocked", "TransferLocked") + tag("pValue", part("Converter")) +
                 tag("pMin", part("Min")) + tag("pMax", part("Max")) + tag("Unit", "us") +
                 tag("Representation", "Logarithmic") + tag("DisplayNotation", "Fixed") + tag("DisplayPrecision", "2"));
        node("Converter", part("Converter"),
             variable("CLOCK", part("Clock")) + tag("FormulaTo", "FROM * CLOCK / 1000") +
                 tag("FormulaFrom", "TO * 1000.0 / CLOCK") + tag("pValue", part("Register")) +
                 tag("Slope", "Increasing"));
        integerRegister();
        constant(part("Clock"), 125);
        for (const char* const limit : {"Min", "Max"}) {
            node("SwissKnife", part(limit),
                 variable("RAW", part(limit) + "Raw") + variable("CLOCK", part("Clock")) +
                     tag("Formula", "RAW * 1000.0 / CLOCK"));
        }
        constant(part("MinRaw"), 0);
        constant(part("MaxRaw"), 10000000);
    }

    void boolean()
    {
        node("Boolean", m_name,
             description() + tag("pIsImplemented", part("Implemented")) + tag("pValue", part("Register")) +
                 tag("OnValue", "1") + tag("OffValue", "0"));
        maskedRegister(31, 31);
        constant(part("Implemented"), 1);
    }

    void command()
    {
        node("Command", m_name, description() + tag("pValue", part("Register")) + tag("pCommandValue", part("Value")));
        integerRegister();
        constant(part("Value"), 1);
    }

    void halved()
    {
        node("Integer", m_name,
             description() + tag("pValue", part("High")) + tag("Min", "0") + tag("pMax", part("Max")));
        constant(part("Max"), 15);
        node("StructReg", part("Halves"),
             place(4, 4) + tag("Endianess", "BigEndian") + "    " + opened("StructEntry", part("High")) +
                 tag("LSB", "3") + tag("MSB", "0") + "    </StructEntry>\n    " + opened("StructEntry", part("Low")) +
                 tag("LSB", "31") + tag("MSB", "16") + "    </StructEntry>\n");
    }

    void floating()
    {
        node("Float", m_name,
             description() + tag("pValue", part("Register")) + tag("Min", "-100.0") + tag("Max", "100.0") +
                 tag("Unit", "dB"));
        node("FloatReg", part("Register"), place(4, 4) + tag("Endianess", "BigEndian"));
    }

    void scaled()
    {
        node("Integer", m_name, description() + tag("pValue", part("Converter")));
        node("IntConverter", part("Converter"),
             tag("FormulaTo", "FROM / 16") + tag("FormulaFrom", "TO * 16") + tag("pValue", part("Raw")));
        constant(part("Raw"), 256);
    }

    void text()
    {
        node("String", m_name, description() + tag("pValue", part("Register")));
        node("StringReg", part("Register"), place(64, 64));
    }

    // Common parts.

    static constexpr const char* kUnsigned = "    <Sign>Unsigned</Sign>\n    <Endianess>BigEndian</Endianess>\n";

    void node(std::string_view element, const std::string& name, const std::string& properties)
    {
        m_nodes += "  " + opened(element, name) + properties + "  </" + std::string(element) + ">\n";
    }

    void constant(const std::string& name, int value)
    {
        node("Integer", name, tag("Visibility", "Invisible") + tag("Value", std::to_string(value)));
    }

    void integerRegister() { node("IntReg", part("Register"), place(4, 4) + kUnsigned); }

    void maskedRegister(int msb, int lsb)
    {
        node("MaskedIntReg", part("Register"),
             place(4, 4) + tag("LSB", std::to_string(lsb)) + tag("MSB", std::to_string(msb)) + kUnsigned);
    }

    std::string place(std::size_t reserved, std::size_t length)
    {
        return tag("Address", hexadecimal(std::exchange(m_address, m_address + reserved))) +
               tag("Length", std::to_string(length)) + tag("AccessMode", "RW") + tag("pPort", "Device") +
               tag("Cachable", "WriteThrough") + tag("PollingTime", "1000");
    }

    [[nodiscard]] std::string part(const char* suffix) const { return m_name + '_' + suffix; }

    [[nodiscard]] std::string description() const
    {
        static constexpr std::array<const char*, 3> kVisibilities = {"Beginner", "Expert", "Guru"};
        return tag("ToolTip", "Sets what " + m_name + " of the sensor is to be") +
               tag("Description", "Sets what " + m_name +
                                      " of the sensor is to be. It takes effect with the next image that is exposed, "
                                      "stays as it is when the acquisition ends, and is kept in the user sets. Other "
                                      "features may limit it: see the manual of the camera.") +
               tag("DisplayName", "Sensor Feature " + std::to_string(m_number)) +
               tag("Visibility", kVisibilities[m_number / 4 % kVisibilities.size()]);
    }

    const std::size_t m_features;
    std::string m_nodes;
    std::string m_name;
    std::string m_selector;
    std::size_t m_number = 0;
    std::size_t m_address = 0x10000;
};

} // namespace

std::string makerDescription(std::size_t features)
{
    Maker maker(features);
    std::string root;
    std::string categories;
    for (std::size_t number = 0; number < features; ++number) {
        if (number % kFeaturesPerCategory == 0) {
            const std::string category = "Control" + std::to_string(number / kFeaturesPerCategory);
            root += tag("pFeature", category);
            categories += (number == 0 ? "" : "  </Category>\n") + ("  " + opened("Category", category));
        }
        categories += tag("pFeature", featureName(number));
        maker.addFeature(number);
    }
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<RegisterDescription ModelName=\"Wordy\" VendorName=\"Maker\" StandardNameSpace=\"None\" "
           "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" "
           "MinorVersion=\"0\" SubMinorVersion=\"0\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n  " +
           opened("Category", "Root") + root + "  </Category>\n" + categories + "  </Category>\n" + maker.nodes() +
           "</RegisterDescription>\n";
}
