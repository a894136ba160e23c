// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_PAGE_H
#define SIMULATOR_MODEL_PAGE_H

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <functional>

namespace simulator {

class Profile;

/// What follows from a paper and from the braille on it, beside the paper's own properties.
bool isPageProperty(const QString &property);

/// What a paper has.
bool isPaperProperty(const QString &property);

/// The settings on which a property of the page depends, or of the paper.
QStringList sourcesOf(const QString &property);

/// The values of settings.
using ValueOf = std::function<QVariant(const QString &setting)>;

/// A property of the page, or of the paper, that these values make.
QVariant pageProperty(const Profile &profile, const QString &property, const ValueOf &valueOf);

/// The rows of dots of a cell, by the name of its dots. Zero when there is none of that name.
int rowsOf(const QString &cellDots);

struct Cell;

/// The distance from a line to the next: that of three rows, and the rows beyond them.
double lineDistance(const Cell &cell, int rows);

/// A distance in whole steps of the paper feed, which is not below the one that is wanted.
double inFeedSteps(double wanted, const QVariantMap &paper);

} // namespace simulator

#endif
