// The operation "limn" of libvips: `vips limn in.jpg out.jpg --style "Evening Lamp"`, and the same
// from every language that libvips speaks.
#include "failure.h"
#include "lit_image.h"
#include "small_file.h"

#include "LM_floating_point.h"
#include "LM_gallery.h"
#include "LM_style_bytes.h"
#include "LM_style_fields.h"

#include <algorithm>
#include <gmodule.h>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Operation {
  VipsOperation parent;
  VipsImage* in;
  VipsImage* out;
  char* style;
  char* set;
  VipsImage* relief;
  VipsImage* mask;
  int left, top, width, height;
};

struct OperationClass {
  VipsOperationClass parent;
};

G_DEFINE_TYPE(Operation, limn_operation, VIPS_TYPE_OPERATION)

[[noreturn]] void Refuse(const std::string& sentence) {
  vips_error("limn", "%s", sentence.c_str());
  throw vips::VError();
}

// A file, or else one of the bundled styles.
LM_style StyleOf(const char* name) {
  LM_style style{};
  std::string why;
  if (name == nullptr) {
    LM_BundledStyle("Default", style);
    return style;
  }
  try {
    const std::vector<uint8_t> content = limn::ReadSmallFile(name, LM_LONGEST_STYLE_FILE);
    if (!LM_StyleFromBytes(content.data(), content.size(), style, why))
      Refuse(std::string(name) + ": " + why);
  } catch (const limn::Failure& failure) {
    if (!LM_BundledStyle(name, style))
      Refuse(failure.what() + std::string(", and no bundled style has this name"));
  }
  return style;
}

// "gloss=20; exposure=130"
void ApplySettings(LM_style& style, std::string_view settings) {
  while (!settings.empty()) {
    const std::string_view setting = settings.substr(0, settings.find(';'));
    settings.remove_prefix(std::min(settings.size(), setting.size() + 1));
    const size_t start = setting.find_first_not_of(' ');
    if (start == std::string_view::npos)
      continue;
    const size_t equals = setting.find('=');
    std::string why = "is not of the form KEY=VALUE";
    if (equals == std::string_view::npos || equals < start ||
        !LM_SetStyleField(style, setting.substr(start, equals - start), setting.substr(equals + 1),
                          why))
      Refuse(std::string(setting) + ": " + why);
  }
}

// The operation keeps its reference.
vips::VImage Borrowed(VipsImage* image) {
  g_object_ref(image);
  return vips::VImage(image);
}

vips::VImage Lit(const Operation& operation) {
  limn::LitSettings settings;
  settings.style = StyleOf(operation.style);
  if (operation.set != nullptr)
    ApplySettings(settings.style, operation.set);
  const vips::VImage in = Borrowed(operation.in);
  if (operation.relief != nullptr) {
    settings.channels.push_back(Borrowed(operation.relief));
    settings.style.bumpChannel = static_cast<int16_t>(in.bands() + 1);
  }
  if (operation.mask != nullptr)
    settings.mask = Borrowed(operation.mask);
  if (operation.width > 0 || operation.height > 0 || operation.left > 0 || operation.top > 0)
    settings.area =
        limn_area{operation.left, operation.top,
                  operation.width > 0 ? operation.width : in.width() - operation.left,
                  operation.height > 0 ? operation.height : in.height() - operation.top};
  return limn::LitImage(in, settings);
}

int Build(VipsObject* object) {
  const LM_floating_point floatingPoint;
  if (VIPS_OBJECT_CLASS(limn_operation_parent_class)->build(object) != 0)
    return -1;
  // libvips is C: no exception may pass.
  try {
    const vips::VImage lit = Lit(*reinterpret_cast<Operation*>(object));
    // The property of an output takes over the reference.
    g_object_ref(lit.get_image());
    g_object_set(object, "out", lit.get_image(), nullptr);
    return 0;
  } catch (const vips::VError&) {
    return -1;
  } catch (const std::exception&) {
    vips_error("limn", "out of memory");
    return -1;
  }
}

void DescribeArguments(OperationClass* type) {
  VIPS_ARG_IMAGE(type, "in", 1, "Input",
                 "Image to light: RGB of 8 or 16 bits or float, with or without more bands",
                 VIPS_ARGUMENT_REQUIRED_INPUT, G_STRUCT_OFFSET(Operation, in));
  VIPS_ARG_IMAGE(type, "out", 2, "Output", "Lit image", VIPS_ARGUMENT_REQUIRED_OUTPUT,
                 G_STRUCT_OFFSET(Operation, out));
  VIPS_ARG_STRING(type, "style", 3, "Style", "File of a style, or name of a bundled one",
                  VIPS_ARGUMENT_OPTIONAL_INPUT, G_STRUCT_OFFSET(Operation, style), nullptr);
  VIPS_ARG_STRING(type, "set", 4, "Set", "Changes to the style: KEY=VALUE; KEY=VALUE",
                  VIPS_ARGUMENT_OPTIONAL_INPUT, G_STRUCT_OFFSET(Operation, set), nullptr);
  VIPS_ARG_IMAGE(type, "relief", 5, "Relief",
                 "Heights: one band of the same size, of 8 or 16 bits or float",
                 VIPS_ARGUMENT_OPTIONAL_INPUT, G_STRUCT_OFFSET(Operation, relief));
  VIPS_ARG_IMAGE(type, "mask", 6, "Mask", "Selection: one 8-bit band of the same size",
                 VIPS_ARGUMENT_OPTIONAL_INPUT, G_STRUCT_OFFSET(Operation, mask));
  VIPS_ARG_INT(type, "left", 7, "Left", "Left edge of the area to light",
               VIPS_ARGUMENT_OPTIONAL_INPUT, G_STRUCT_OFFSET(Operation, left), 0, LIMN_LONGEST_SIDE,
               0);
  VIPS_ARG_INT(type, "top", 8, "Top", "Top edge of the area to light", VIPS_ARGUMENT_OPTIONAL_INPUT,
               G_STRUCT_OFFSET(Operation, top), 0, LIMN_LONGEST_SIDE, 0);
  VIPS_ARG_INT(type, "width", 9, "Width", "Width of the area, 0 for all that is on its right",
               VIPS_ARGUMENT_OPTIONAL_INPUT, G_STRUCT_OFFSET(Operation, width), 0,
               LIMN_LONGEST_SIDE, 0);
  VIPS_ARG_INT(type, "height", 10, "Height", "Height of the area, 0 for all that is below",
               VIPS_ARGUMENT_OPTIONAL_INPUT, G_STRUCT_OFFSET(Operation, height), 0,
               LIMN_LONGEST_SIDE, 0);
}

void limn_operation_class_init(OperationClass* type) {
  GObjectClass* object = G_OBJECT_CLASS(type);
  object->set_property = vips_object_set_property;
  object->get_property = vips_object_get_property;
  VipsObjectClass* vips = VIPS_OBJECT_CLASS(type);
  vips->nickname = "limn";
  vips->description = "light an image";
  vips->build = Build;
  VIPS_OPERATION_CLASS(type)->flags = VIPS_OPERATION_SEQUENTIAL;
  DescribeArguments(type);
}

void limn_operation_init(Operation*) {}

} // namespace

// What libvips calls when it loads the module from its folder.
extern "C" G_MODULE_EXPORT const gchar* g_module_check_init(GModule* module) {
  // Types cannot be taken back, so the code must stay.
  g_module_make_resident(module);
  limn_operation_get_type();
  return nullptr;
}
