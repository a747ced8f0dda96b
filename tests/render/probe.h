#pragma once

/// Behaviours of the probe module's shader: the first number of its settings.
enum ProbeBehaviour {
    kPaint,         ///< the four numbers as colour and transparency
    kDescribe,      ///< tells the record's fields, changes nothing
    kMeasureLight,  ///< colours by the light here and, by the numbers, elsewhere
    kPassOn,        ///< traces, as often as the first number says, along the others or onward
    kGreet,         ///< tells when it has read its settings, and the passes of frames
    kRefuse,        ///< refuses these settings
};
