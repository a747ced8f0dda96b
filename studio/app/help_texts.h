#pragma once

/// Texts of the help in addition to the options: the program's purpose, and examples for each
/// command.
namespace tavora::studio::help {

inline constexpr const char* kProgramText =
    "Renders glTF scenes with the Tavora cel-look shader, and edits how they look.";

inline constexpr const char* kProgramExamples = R"(Examples:
  tavora render model.glb -o picture.png
  tavora render model.glb -o picture.png --look comic
  tavora edit model.glb
  tavora help render

Exit status: 0 done, 1 internal, 2 usage, 3 scene, 4 write, 5 some frames failed,
6 plug-in, 75 stopped by a signal between frames, to be gone on with, 128+n
stopped by signal n.
Environment: TAVORA_PLUGIN_PATH, TAVORA_DEFAULTS, TAVORA_THREADS, TAVORA_MAX_MEMORY, NO_COLOR.)";

inline constexpr const char* kRenderExamples = R"(Examples:
  tavora render model.glb -o picture.png
  tavora render model.glb -o picture.exr -r 1920x1080 -s 64 --depth float
  tavora render model.glb -o out.png --look comic --look 'Glass*=two-tone'
  tavora render model.glb -o out.png --set '*.edgeEnable=true' --set Body.edgeColor=#800000
  tavora render model.glb -o out.png --look noir --set 'Body.zones[1].color=#ff8000'
  tavora render model.glb -o detail.exr --crop 0.5,0,1,0.5 --background transparent
  tavora render model.glb -o 'film/####.png' -f 1-48 --animation Walk
  tavora render model.glb -o 'film/%04d.exr' -f 1-48 --hold 2 --existing skip
  tavora render model.glb --list-cameras
  cat model.glb | tavora render - -o - --format exr >picture.exr

SCENE - is standard input, which must hold everything; -o - is standard output.
#### or %04d in FILE is the frame's number. --existing skip goes on with a film.
SURFACE and LIGHT are names or patterns (* ? [a-z]). The very name comes before the
pattern; a backslash takes the next character as it is: --look 'a\=b=noir'.)";

inline constexpr const char* kInfoExamples = R"(Examples:
  tavora info model.glb
  tavora info model.glb --json | jq '.surfaces[].name')";

inline constexpr const char* kSettingsExamples = R"(Examples:
  tavora settings model.glb
  tavora settings model.glb --surface Body
  tavora settings model.glb --look comic --surface 'Body*' -o styled.glb
  tavora settings styled.glb --set Body.edgeCoverage=0.3 -o styled.glb
  tavora settings model.glb --look noir -o - | tavora render - -o noir.png

SCENE - is standard input, which can be printed only; -o - is standard output.
SURFACE and NAME are names or patterns (* ? [a-z]). The very name comes before the
pattern; a backslash takes the next character as it is: --surface 'a\*b'.)";

inline constexpr const char* kMergeExamples = R"(Examples:
  tavora render model.glb -o upper.png --tile 1/2
  tavora render model.glb -o lower.png --tile 2/2
  tavora merge upper.png lower.png -o picture.png

The picture is the one that a render without --tile writes, byte for byte.)";

inline constexpr const char* kHelpExamples = R"(Examples:
  tavora help
  tavora help render)";

inline constexpr const char* kLooksExamples = R"(Examples:
  tavora looks
  tavora render model.glb -o out.png --look noir)";

inline constexpr const char* kEditExamples = R"(Examples:
  tavora edit model.glb
  tavora edit model.glb --look comic
  tavora edit model.glb --animation Walk --time 0.5)";

inline constexpr const char* kPanelExamples = R"(Examples:
  tavora panel model.glb -o panel.png
  tavora panel model.glb --surface Body --tab 3 -o slope.png --scale 200 --theme dark)";

}  // namespace tavora::studio::help
