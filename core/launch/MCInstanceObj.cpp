#include "core/launch/MCInstanceObj.h"

MCInstanceObj::MCInstanceObj(QObject *parent) : QObject(parent) {}

MCInstanceObj::~MCInstanceObj() = default;
